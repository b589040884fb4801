#include "codesign/SignatureFiles.h"

#include "Platform/Files/Files.h"
#include "Signatures/Digest.h"
#include "Signatures/SignatureFailure.h"

namespace tarvik::codesign::SignatureFiles {

namespace {

using namespace signatures;

/// What is larger is no list of a bundle's files.
constexpr std::int64_t largestSeal = std::int64_t{32} << 20;
constexpr std::int64_t largestRequirements = std::int64_t{1} << 20;

const char* sentenceOf(ResourceSeal::Flaw flaw) {
    switch (flaw) {
        case ResourceSeal::Flaw::tooOld:
            return Sentences::sealTooOld;
        case ResourceSeal::Flaw::otherRules:
            return Sentences::otherRules;
        case ResourceSeal::Flaw::unreadable:
            break;
    }
    return Sentences::sealChanged;
}

std::optional<std::string> bytesOf(const fs::path& file, std::int64_t limit) {
    std::optional<std::string> bytes;
    ignoringFailure([&] { bytes = Files::read(file, limit); });
    return bytes;
}

}  // namespace

std::optional<std::string> requirementsOf(const BundleLayout& layout) {
    return bytesOf(layout.signatureFolder() / "CodeRequirements", largestRequirements);
}

ResourceSeal sealOf(const BundleLayout& layout, const CodeDirectory& directory) {
    const fs::path file = layout.signatureFolder() / "CodeResources";
    if (!Files::itemExists(file)) throw SignatureFailure(layout.named, Sentences::sealMissing);
    const auto bytes = bytesOf(file, largestSeal);
    if (!bytes || Digest::of(*bytes, Digest::Kind::sha256) != directory.resources)
        throw SignatureFailure(layout.named, Sentences::sealChanged);
    try {
        return ResourceSeal::parsed(*bytes);
    } catch (const ResourceSeal::Flaw flaw) {
        throw SignatureFailure(layout.named, sentenceOf(flaw));
    }
}

void write(const BundleLayout& layout, std::string_view seal, const CodeDirectory& directory) {
    const fs::path folder = layout.signatureFolder();
    // Through a link, another bundle's signature would be written.
    if (Files::isSymbolicLink(folder)) throw SignatureFailure(layout.named, Sentences::linkLeavesBundle);
    Files::createFolder(folder);
    Files::writeDurably(folder / "CodeResources", seal);
    Files::writeDurably(folder / "CodeRequirements", noRequirements);
    Files::writeDurably(folder / "CodeSignature", "");  // Nobody's.
    Files::writeDurably(folder / "CodeDirectory", directory.bytes());
}

}  // namespace tarvik::codesign::SignatureFiles
