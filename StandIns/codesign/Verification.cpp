#include "codesign/Verification.h"

#include "Platform/Files/Files.h"
#include "Signatures/BundleLayout.h"
#include "Signatures/CodeDirectory.h"
#include "Signatures/Digest.h"
#include "Signatures/SignatureFailure.h"
#include "codesign/ResourceSeal.h"
#include "codesign/Resources.h"
#include "codesign/SealedFile.h"
#include "codesign/SignatureFiles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::codesign::Verification {

namespace {

using namespace signatures;
using Kind = Resources::Item::Kind;

std::string sha256(std::string_view bytes) {
    return Digest::of(bytes, Digest::Kind::sha256);
}

/// Compares what stands in a bundle with its seal, item by item.
class SealCheck {
public:
    SealCheck(const BundleLayout& layout, Depth depth, ResourceSeal seal)
        : m_layout(layout), m_depth(depth), m_missing(std::move(seal.items)) {}

    void run() {
        Resources::forEach(m_layout, [this](const Resources::Item& item) { compare(item); });
        for (const auto& [path, sealed] : m_missing)
            if (!sealed.isOptional) m_changes.push_back("file missing: " + (m_layout.contents / path).native());
        if (!m_changes.empty()) throw SignatureFailure(m_layout.named, Sentences::resourceChanged, m_changes);
        if (m_nested) throw SignatureFailure(*m_nested);
    }

private:
    void compare(const Resources::Item& item) {
        const auto found = m_missing.find(item.path);
        const bool isSealed = found != m_missing.end();
        if (!isSealed || !isAsSealed(item, found->second))
            m_changes.push_back((isSealed ? "file modified: " : "file added: ") +
                                Resources::placeOf(m_layout, item).native());
        if (isSealed) m_missing.erase(found);
    }

    bool isAsSealed(const Resources::Item& item, const SealedItem& sealed) {
        switch (item.kind) {
            case Kind::file:
            case Kind::nestedFile: {
                const auto digests = SealedFile::digestsOf(m_layout, item, {Digest::Kind::sha256}, m_depth.isStrict);
                return digests && sealed.sha256 == digests->front();
            }
            case Kind::link:
                return sealed.link == SealedFile::linkOf(m_layout, item, m_depth.isStrict);
            case Kind::nestedBundle:
                if (sealed.codeHash) compareNested(Resources::placeOf(m_layout, item), *sealed.codeHash);
                return sealed.codeHash.has_value();
            case Kind::special:
                return false;
        }
        return false;
    }

    /// The first thing that is wrong with nested code is kept for later: what is wrong with resources goes before it.
    void compareNested(const fs::path& place, const std::string& codeHash) {
        if (m_nested) return;
        try {
            const bool isSame = CodeDirectory::ofBundle(BundleLayout::at(place)).hash() == codeHash;
            if (!isSame) m_nested.emplace(m_layout.named, Sentences::nestedChanged, detailsOf(place));
            if (isSame && m_depth.isDeep) verify(place, m_depth);
        } catch (const SignatureFailure& failure) {
            m_nested = SignatureFailure::ofPart(m_layout.named, failure, place);
        }
    }

    static std::vector<std::string> detailsOf(const fs::path& changed) {
        return {"file modified: " + changed.native()};
    }

    const BundleLayout& m_layout;
    Depth m_depth;
    /// What the seal names and the bundle has not shown yet.
    ResourceSeal::Items m_missing;
    std::vector<std::string> m_changes;
    std::optional<SignatureFailure> m_nested;
};

void requireProgram(const BundleLayout& layout, const CodeDirectory& directory, Depth depth) {
    const auto size = Files::infoFollowingLinks(layout.executable);
    if (!size || static_cast<std::uint64_t>(size->size) != directory.programSize ||
        SealedFile::digestOfProgram(layout, depth.isStrict) != directory.program)
        throw SignatureFailure(layout.named, Sentences::codeChanged);
}

}  // namespace

void verify(const fs::path& bundle, Depth depth) {
    const auto layout = BundleLayout::at(bundle);
    const auto directory = CodeDirectory::ofBundle(layout);
    // Info.plist is sealed, so only the record itself can have been changed.
    if (directory.identifier != layout.identifier && sha256(layout.infoBytes) == directory.info)
        throw SignatureFailure(layout.named, Sentences::codeChanged);
    requireProgram(layout, directory, depth);
    if (sha256(layout.infoBytes) != directory.info) throw SignatureFailure(layout.named, Sentences::infoChanged);
    const auto requirements = SignatureFiles::requirementsOf(layout);
    if (!requirements || sha256(*requirements) != directory.requirements)
        throw SignatureFailure(layout.named, Sentences::codeChanged);
    if (depth.isStrict) SealedFile::requireNoDetritus(layout);
    SealCheck(layout, depth, SignatureFiles::sealOf(layout, directory)).run();
}

}  // namespace tarvik::codesign::Verification
