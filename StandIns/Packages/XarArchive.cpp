#include "Packages/XarArchive.h"

#include "Packages/Hash.h"
#include "Packages/PackageFailure.h"
#include "Packages/Unpacking.h"
#include "Platform/Files/FileError.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::packages {

namespace {

constexpr std::size_t headerSize = 28;
constexpr std::uint64_t largestHeader = 4096;
constexpr std::uint64_t largestTable = 256'000'000;
constexpr std::uint64_t largestDigest = 64;
constexpr const char* noArchive = "The file is no xar archive.";
constexpr const char* damaged = "The archive is damaged.";

std::uint64_t numberIn(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t index = 0; index < size; ++index)
        number = number << 8 | static_cast<unsigned char>(bytes[at + index]);
    return number;
}

/// Whether the header and the table name one algorithm: 1 is SHA-1 and 2 is MD5; newer ones have other numbers. No
/// digest at all counts only where both say so.
bool isAlgorithm(std::uint64_t number, std::string_view style) {
    if (number == 0) return style.empty() || style == "none";
    if (number == 1) return style == "sha1" || style == "SHA1";
    if (number == 2) return style == "md5" || style == "MD5";
    return number <= 4 && (style.starts_with("sha") || style.starts_with("SHA")) && Hash::named(style);
}

bool isSameDigest(std::string_view digits, const std::string& digest) {
    std::string lower;
    for (const char letter : digits)
        if (!std::isspace(static_cast<unsigned char>(letter)))
            lower += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return lower == hexadecimal(digest);
}

/// Passes a source on, and proves at its end that it was all, and the right bytes.
ByteSource proved(ByteSource source, std::uint64_t size, const XarChecksum& checksum) {
    struct State {
        ByteSource source;
        std::uint64_t left;
        std::optional<Hash> hash;
        std::string digits;
    };
    // An algorithm that nobody knows proves nothing, and so the bytes are not believed.
    auto hash = checksum.style.empty() ? std::nullopt : Hash::named(checksum.style);
    if (!checksum.style.empty() && checksum.style != "none" && !hash) failDamaged(damaged);
    auto state = std::make_shared<State>(State{std::move(source), size, std::move(hash), checksum.digits});
    return [state]() -> std::string_view {
        const std::string_view block = state->source();
        if (block.size() > state->left) failDamaged(damaged);
        state->left -= block.size();
        if (state->hash && !block.empty()) state->hash->add(block);
        if (block.empty()) {
            if (state->left != 0) failDamaged(damaged);
            if (state->hash && !isSameDigest(state->digits, state->hash->digest())) failDamaged(damaged);
            state->hash.reset();
        }
        return block;
    };
}

}  // namespace

XarArchive XarArchive::open(const fs::path& file) {
    // A pipe would have no end, and must not be waited for.
    FileDescriptor handle(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!handle || ::fstat(handle.get(), &status) != 0) throw FileError("open", file, errno);
    if (!S_ISREG(status.st_mode)) failForeign(noArchive);
    XarArchive archive(std::move(handle));
    archive.m_fileSize = static_cast<std::uint64_t>(status.st_size);
    archive.readTable();
    return archive;
}

void XarArchive::readTable() {
    if (m_fileSize < headerSize) failForeign(noArchive);
    const std::string header = rawBytes(0, headerSize);
    if (!header.starts_with("xar!")) failForeign(noArchive);
    const std::uint64_t ownSize = numberIn(header, 4, 2);
    const std::uint64_t packed = numberIn(header, 8, 8);
    const std::uint64_t unpacked = numberIn(header, 16, 8);
    if (ownSize < headerSize || ownSize > largestHeader || numberIn(header, 6, 2) != 1) failDamaged(damaged);
    if (unpacked > largestTable || packed > largestTable) failTooLarge("The table of contents is too large.");
    if (packed > m_fileSize - std::min(m_fileSize, ownSize)) failDamaged(damaged);
    const std::string table = rawBytes(ownSize, packed);
    m_heap = ownSize + packed;
    const std::string xml = unpackedBytes(Packing::zlib, table, unpacked);
    if (xml.size() != unpacked) failDamaged(damaged);
    m_contents = XarContents::parsed(xml);

    if (!isAlgorithm(numberIn(header, 24, 4), m_contents.checksumStyle)) failDamaged(damaged);
    auto hash = Hash::named(m_contents.checksumStyle);
    if (!hash) return;
    hash->add(table);
    m_checksum = bytes(m_contents.checksum, largestDigest);
    if (m_checksum != hash->digest()) failDamaged(damaged);
}

std::string XarArchive::rawBytes(std::uint64_t offset, std::uint64_t length) const {
    std::string bytes(length, '\0');
    std::size_t have = 0;
    while (have < bytes.size()) {
        const ssize_t got =
            ::pread(m_file.get(), bytes.data() + have, bytes.size() - have, static_cast<off_t>(offset + have));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) failDamaged(damaged);
        have += static_cast<std::size_t>(got);
    }
    return bytes;
}

std::string XarArchive::bytes(const XarPlace& place, std::uint64_t limit) const {
    if (place.length > limit) failTooLarge("A part of the archive is too large.");
    const std::uint64_t room = m_fileSize - m_heap;
    if (place.offset > room || place.length > room - place.offset) failDamaged(damaged);
    return rawBytes(m_heap + place.offset, place.length);
}

ByteSource XarArchive::packedSource(const XarEntry& entry) const {
    const XarPlace place = entry.data.value_or(XarPlace{});
    const std::uint64_t room = m_fileSize - m_heap;
    if (place.offset > room || place.length > room - place.offset) failDamaged(damaged);
    struct State {
        std::uint64_t at;
        std::uint64_t left;
        std::string block;
    };
    auto state = std::make_shared<State>(State{m_heap + place.offset, place.length, {}});
    return [this, state]() -> std::string_view {
        constexpr std::uint64_t pieceSize = 65536;
        const std::uint64_t size = std::min(pieceSize, state->left);
        state->block = rawBytes(state->at, size);
        state->at += size;
        state->left -= size;
        return state->block;
    };
}

ByteSource XarArchive::source(const XarEntry& entry) const {
    const std::uint64_t packed = entry.data ? entry.data->length : 0;
    ByteSource source = proved(packedSource(entry), packed, entry.archived);
    const std::string& encoding = entry.encoding;
    if (entry.data && packed > 0) {
        if (encoding == "application/x-gzip")
            source = unpackedSource(Packing::zlib, std::move(source));
        else if (encoding == "application/x-bzip2")
            source = unpackedSource(Packing::bzip2, std::move(source));
        else if (encoding == "application/x-lzma" || encoding == "application/x-xz")
            source = unpackedSource(Packing::lzma, std::move(source));
        else if (!encoding.empty() && encoding != "application/octet-stream")
            failDamaged("The archive holds a file in an encoding that is not known: " + encoding);
    }
    return proved(std::move(source), entry.size, entry.extracted);
}

std::string XarArchive::bytes(const XarEntry& entry, std::uint64_t limit) const {
    if (entry.size > limit) failTooLarge("A file in the archive is too large: " + entry.path);
    const ByteSource blocks = source(entry);
    std::string all;
    for (std::string_view block = blocks(); !block.empty(); block = blocks()) all += block;
    return all;
}

}  // namespace tarvik::packages
