#include "Installers/Opening/ZipHeader.h"

#include "Installers/Opening/Cp437.h"
#include "Installers/Opening/ZipFields.h"

#include <algorithm>
#include <sys/stat.h>
#include <utility>

namespace tarvik {

namespace {

using ZipFields::eight;
using ZipFields::four;
using ZipFields::two;

constexpr std::size_t localLength = 30;
constexpr std::size_t centralLength = 46;
constexpr std::uint16_t encryptedFlag = 1U << 0U;
constexpr std::uint16_t descriptorFlag = 1U << 3U;
constexpr std::uint16_t utf8Flag = 1U << 11U;
constexpr std::uint32_t inZip64 = 0xFFFFFFFF;
/// Versions and methods that have been given out are below these, by far.
constexpr unsigned versionsEnd = 100;
constexpr unsigned methodsEnd = 100;

/// "Version made by", the systems whose modes are Unix modes.
constexpr unsigned madeOnUnix = 3;
constexpr unsigned madeOnDarwin = 19;

// The identifiers of extra fields.
constexpr std::uint16_t zip64Field = 0x0001;
constexpr std::uint16_t unixField = 0x000D;
constexpr std::uint16_t timestampField = 0x5455;
constexpr std::uint16_t asiUnixField = 0x756E;
constexpr std::uint16_t unicodePathField = 0x7075;

ZipHeader::Kind kindOf(unsigned mode) {
    switch (mode & S_IFMT) {
        case 0:
        case S_IFREG:
            return ZipHeader::Kind::file;
        case S_IFDIR:
            return ZipHeader::Kind::folder;
        case S_IFLNK:
            return ZipHeader::Kind::link;
        default:
            return ZipHeader::Kind::other;
    }
}

/// Sizes and places that do not fit into four bytes stand here, in this order, and only those.
void readZip64(std::string_view field, ZipHeader& header, std::uint64_t* offset) {
    std::size_t at = 0;
    for (std::uint64_t* value : {&header.size, &header.storedSize, offset}) {
        if (!value || *value != inZip64 || at + 8 > field.size()) continue;
        *value = eight(field, at);
        at += 8;
    }
}

void readField(std::uint16_t identifier, std::string_view field, ZipHeader& header, std::uint64_t* offset) {
    constexpr std::size_t asiModeAt = 4;
    constexpr std::size_t unixLength = 12;
    constexpr std::size_t unicodePathAt = 5;
    constexpr std::size_t timestampLength = 5;
    if (identifier == zip64Field) readZip64(field, header, offset);
    if (identifier == timestampField && field.size() >= timestampLength && (field[0] & 1) != 0)
        header.changed = static_cast<std::int32_t>(four(field, 1));
    if (identifier == unicodePathField && field.size() > unicodePathAt)
        header.unicodeName = field.substr(unicodePathAt);
    if (identifier == asiUnixField) {
        const auto kind = kindOf(two(field, asiModeAt));
        if (kind == ZipHeader::Kind::link || kind == ZipHeader::Kind::other) header.kind = kind;
    }
    // What follows is the other name of a hard link, the text of a link, or the number of a device.
    if (identifier == unixField && field.size() > unixLength && header.kind != ZipHeader::Kind::link)
        header.kind = ZipHeader::Kind::other;
}

void readExtra(std::string_view extra, ZipHeader& header, std::uint64_t* offset) {
    while (extra.size() >= 4) {
        const std::size_t length = two(extra, 2);
        readField(two(extra, 0), extra.substr(4, length), header, offset);
        extra.remove_prefix(std::min(extra.size(), 4 + length));
    }
}

bool isPlausible(unsigned version, unsigned method, std::size_t nameLength) {
    return (version & 0xFFU) < versionsEnd && method < methodsEnd && nameLength > 0;
}

void readFlags(std::uint16_t flags, ZipHeader& header) {
    header.isUtf8 = (flags & utf8Flag) != 0;
    header.hasDescriptor = (flags & descriptorFlag) != 0;
    header.isEncrypted = (flags & encryptedFlag) != 0;
}

}  // namespace

std::optional<ZipHeader> ZipHeader::localAt(ZipBytes& bytes, std::uint64_t offset) {
    std::string_view fixed = bytes.at(offset, localLength);
    if (fixed.size() < localLength || !fixed.starts_with(localSignature)) return std::nullopt;
    const std::size_t nameLength = two(fixed, 26);
    const std::size_t extraLength = two(fixed, 28);
    if (!isPlausible(two(fixed, 4), two(fixed, 8), nameLength)) return std::nullopt;
    ZipHeader header;
    header.length = localLength + nameLength + extraLength;
    const std::string_view all = bytes.at(offset, header.length);
    if (all.size() < localLength + nameLength) return std::nullopt;
    readFlags(two(all, 6), header);
    header.storedSize = four(all, 18);
    header.size = four(all, 22);
    header.name = all.substr(localLength, nameLength);
    readExtra(all.substr(localLength + nameLength), header, nullptr);
    return header;
}

std::optional<ZipHeader> ZipHeader::centralAt(ZipBytes& bytes, std::uint64_t offset) {
    const std::string_view fixed = bytes.at(offset, centralLength);
    if (fixed.size() < centralLength || !fixed.starts_with(centralSignature)) return std::nullopt;
    const std::size_t nameLength = two(fixed, 28);
    const std::size_t extraLength = two(fixed, 30);
    if (!isPlausible(two(fixed, 6), two(fixed, 10), nameLength)) return std::nullopt;
    ZipHeader header;
    header.length = centralLength + nameLength + extraLength + two(fixed, 32);
    const std::string_view all = bytes.at(offset, header.length);
    if (all.size() < header.length) return std::nullopt;
    readFlags(two(all, 8), header);
    header.method = two(all, 10);
    header.changedAsFat = four(all, 12);
    header.checkSum = four(all, 16);
    header.storedSize = four(all, 20);
    header.size = four(all, 24);
    header.localOffset = four(all, 42);
    header.name = all.substr(centralLength, nameLength);
    const unsigned system = two(all, 4) >> 8U;
    header.mode = four(all, 38) >> 16U;
    const Kind kind = kindOf(header.mode);
    // Other systems than these may keep anything there; but a reader may take a link for one all the same.
    if (kind != Kind::other || system == madeOnUnix || system == madeOnDarwin) header.kind = kind;
    readExtra(all.substr(centralLength + nameLength, extraLength), header, &header.localOffset);
    return header;
}

std::vector<std::string> ZipHeader::names() const {
    std::vector<std::string> readings{name};
    const auto add = [&](std::string reading) {
        if (std::find(readings.begin(), readings.end(), reading) == readings.end())
            readings.push_back(std::move(reading));
    };
    if (!isUtf8) add(Cp437::toUtf8(name));
    if (!unicodeName.empty()) add(unicodeName);
    return readings;
}

}  // namespace tarvik
