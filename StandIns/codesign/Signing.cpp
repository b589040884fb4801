#include "codesign/Signing.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Signatures/BundleLayout.h"
#include "Signatures/CodeDirectory.h"
#include "Signatures/Digest.h"
#include "Signatures/SignatureFailure.h"
#include "codesign/ResourceRules.h"
#include "codesign/ResourceSeal.h"
#include "codesign/Resources.h"
#include "codesign/SealedFile.h"
#include "codesign/SignatureFiles.h"

#include <cerrno>
#include <cstdint>
#include <string>

namespace tarvik::codesign::Signing {

namespace {

using namespace signatures;
using Kind = Resources::Item::Kind;

/// Nothing that a strict check would refuse is sealed: what was signed must verify.
constexpr bool strictly = true;

std::string codeHashOf(const BundleLayout& layout, const fs::path& nested, Manner manner) {
    try {
        if (manner.isDeep) sign(nested, {.isForced = true, .isDeep = true});
        return CodeDirectory::ofBundle(BundleLayout::at(nested)).hash();
    } catch (const SignatureFailure& failure) {
        throw SignatureFailure::ofPart(layout.named, failure, nested);
    }
}

void addFile(ResourceSeal& seal, const BundleLayout& layout, const Resources::Item& item) {
    const auto digests = SealedFile::digestsOf(layout, item, {Digest::Kind::sha1, Digest::Kind::sha256}, strictly);
    if (!digests) throw SignatureFailure(layout.named, Sentences::resourceChanged);
    seal.items[item.path] = {.sha256 = digests->at(1), .sha1 = digests->at(0), .isOptional = item.isOptional};
    const auto old = ResourceRules::ofOldSeals().verdictOf(item.path);
    if (old != ResourceRules::Verdict::unsealed)
        seal.oldItems[item.path] = {.sha1 = digests->at(0), .isOptional = old == ResourceRules::Verdict::optional};
}

void add(ResourceSeal& seal, const BundleLayout& layout, const Resources::Item& item, Manner manner) {
    const fs::path place = Resources::placeOf(layout, item);
    switch (item.kind) {
        case Kind::file:
            addFile(seal, layout, item);
            break;
        case Kind::link:
            seal.items[item.path] = {.link = SealedFile::linkOf(layout, item, strictly), .isOptional = item.isOptional};
            break;
        case Kind::nestedBundle:
            seal.items[item.path] = {.codeHash = codeHashOf(layout, place, manner)};
            break;
        case Kind::nestedFile:
            throw SignatureFailure(layout.named,
                                   BundleLayout::isMachO(place) ? Sentences::unsupported : Sentences::notSigned,
                                   {"In subcomponent: " + place.native()});
        case Kind::special:
            throw SignatureFailure(layout.named, systemErrorText(ENOTSUP), {"In subcomponent: " + place.native()});
    }
}

/// True when there is a signature. One of a Mac's program would be broken by another seal.
bool isSigned(const BundleLayout& layout) {
    try {
        CodeDirectory::ofBundle(layout);
        return true;
    } catch (const SignatureFailure& failure) {
        if (layout.hasMachOProgram() && failure.sentence() == Sentences::unsupported) throw;
        return failure.sentence() == Sentences::unsupported;
    }
}

}  // namespace

bool sign(const fs::path& bundle, Manner manner) {
    const auto layout = BundleLayout::at(bundle);
    const bool replaces = isSigned(layout);
    if (replaces && !manner.isForced) throw SignatureFailure(bundle, "is already signed");

    SealedFile::requireNoDetritus(layout);
    ResourceSeal seal;
    Resources::forEach(layout, [&](const Resources::Item& item) { add(seal, layout, item, manner); });
    const std::string xml = seal.xml();
    // A name that a property list cannot hold would not be found again.
    bool isFaithful = false;
    try {
        isFaithful = ResourceSeal::parsed(xml) == seal;
    } catch (const ResourceSeal::Flaw) {
        isFaithful = false;
    }
    if (!isFaithful) throw SignatureFailure(bundle, systemErrorText(EILSEQ));

    const auto program = Files::infoFollowingLinks(layout.executable);
    const auto digest = [](std::string_view bytes) { return Digest::of(bytes, Digest::Kind::sha256); };
    SignatureFiles::write(layout, xml,
                          {.identifier = layout.identifier,
                           .programSize = program ? static_cast<std::uint64_t>(program->size) : 0,
                           .program = SealedFile::digestOfProgram(layout, strictly),
                           .info = digest(layout.infoBytes),
                           .requirements = digest(SignatureFiles::noRequirements),
                           .resources = digest(xml)});
    return replaces;
}

}  // namespace tarvik::codesign::Signing
