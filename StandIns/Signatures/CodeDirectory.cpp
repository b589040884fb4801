#include "Signatures/CodeDirectory.h"

#include "Platform/Files/Files.h"
#include "Signatures/BundleLayout.h"
#include "Signatures/Digest.h"
#include "Signatures/SignatureFailure.h"

#include <cstddef>

namespace tarvik::signatures {

namespace {

constexpr std::uint32_t magic = 0xFADE0C02;
constexpr std::uint32_t version = 0x20400;
constexpr std::size_t headerSize = 88;
constexpr std::size_t digestSize = 32;
/// Slots before the first page of the program, counted backwards: Info.plist, requirements, resources.
constexpr std::size_t specialSlots = 3;
constexpr unsigned sha256Type = 2;

constexpr std::size_t longestIdentifier = 4096;
constexpr std::size_t largestRecord = headerSize + longestIdentifier + 1 + (specialSlots + 1) * digestSize;

/// Numbers are big-endian, with zeros in front where there is more room than they have.
void append(std::string& bytes, std::uint64_t value, int size) {
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
        bytes += static_cast<char>(shift < 64 ? value >> shift & 0xFF : 0);
}

std::uint64_t numberAt(std::string_view bytes, std::size_t offset, int size) {
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i) value = value << 8 | static_cast<unsigned char>(bytes[offset + std::size_t(i)]);
    return value;
}

}  // namespace

std::string CodeDirectory::bytes() const {
    const std::size_t identifierOffset = headerSize;
    const std::size_t firstPage = identifierOffset + identifier.size() + 1 + specialSlots * digestSize;
    const bool isLarge = programSize > 0xFFFFFFFF;
    std::string bytes;
    append(bytes, magic, 4);
    append(bytes, firstPage + digestSize, 4);
    append(bytes, version, 4);
    append(bytes, adHoc, 4);
    append(bytes, firstPage, 4);
    append(bytes, identifierOffset, 4);
    append(bytes, specialSlots, 4);
    append(bytes, 1, 4);  // One page.
    append(bytes, isLarge ? 0xFFFFFFFF : programSize, 4);
    append(bytes, digestSize, 1);
    append(bytes, sha256Type, 1);
    append(bytes, 0, 1);   // The platform: none of the system's own.
    append(bytes, 0, 1);   // The page size: without an end.
    append(bytes, 0, 16);  // Spare, no scattered pages, no team, spare.
    append(bytes, isLarge ? programSize : 0, 8);
    append(bytes, 0, 24);  // No executable segment.
    bytes += identifier;
    bytes += '\0';
    return bytes + resources + requirements + info + program;
}

std::optional<CodeDirectory> CodeDirectory::parsed(std::string_view bytes) {
    constexpr std::size_t digests = (specialSlots + 1) * digestSize;
    if (bytes.size() < headerSize + 1 + digests || bytes.size() > largestRecord) return std::nullopt;
    const std::string_view slots = bytes.substr(bytes.size() - digests);
    const auto slot = [&](std::size_t at) { return std::string(slots.substr(at * digestSize, digestSize)); };
    const std::uint64_t large = numberAt(bytes, 56, 8);
    CodeDirectory result{.identifier = std::string(bytes.substr(headerSize, bytes.size() - headerSize - digests - 1)),
                         .programSize = large ? large : numberAt(bytes, 32, 4),
                         .program = slot(3),
                         .info = slot(2),
                         .requirements = slot(1),
                         .resources = slot(0)};
    // Whatever else a record may say would have to be understood before it is believed.
    if (result.identifier.find('\0') != std::string::npos || result.bytes() != bytes) return std::nullopt;
    return result;
}

std::string CodeDirectory::hash() const {
    return Digest::of(bytes(), Digest::Kind::sha256).substr(0, 20);
}

CodeDirectory CodeDirectory::ofBundle(const BundleLayout& layout) {
    const fs::path file = layout.signatureFolder() / "CodeDirectory";
    if (!Files::itemExists(file)) {
        const bool isSealedByMac =
            layout.hasMachOProgram() && Files::itemExists(layout.signatureFolder() / "CodeResources");
        throw SignatureFailure(layout.named, isSealedByMac ? Sentences::unsupported : Sentences::notSigned);
    }
    std::optional<CodeDirectory> directory;
    ignoringFailure([&] { directory = parsed(Files::read(file, largestRecord)); });
    if (!directory) throw SignatureFailure(layout.named, Sentences::unsupported);
    return *directory;
}

}  // namespace tarvik::signatures
