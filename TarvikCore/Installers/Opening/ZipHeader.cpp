#include "Installers/Opening/ZipHeader.h"

#include "Installers/Opening/ZipFields.h"

#include <algorithm>
#include <array>
#include <sys/stat.h>
#include <utility>

namespace tarvik {

namespace {

using ZipFields::eight;
using ZipFields::four;
using ZipFields::two;

constexpr std::size_t localLength = 30;
constexpr std::size_t centralLength = 46;
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
constexpr std::uint16_t asiUnixField = 0x756E;
constexpr std::uint16_t unicodePathField = 0x7075;

/// The upper half of CP437.
constexpr std::array<std::uint16_t, 128> cp437 = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE,
    0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, 0x00FF, 0x00D6,
    0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA,
    0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502,
    0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510, 0x2514,
    0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550,
    0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C,
    0x2588, 0x2584, 0x258C, 0x2590, 0x2580, 0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4,
    0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320,
    0x2321, 0x00F7, 0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};

std::string fromCp437(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        const unsigned character = value < 0x80 ? value : cp437[value - 0x80U];
        if (character < 0x80) {
            text += static_cast<char>(character);
        } else if (character < 0x800) {
            text += static_cast<char>(0xC0U | character >> 6U);
            text += static_cast<char>(0x80U | (character & 0x3FU));
        } else {
            text += static_cast<char>(0xE0U | character >> 12U);
            text += static_cast<char>(0x80U | (character >> 6U & 0x3FU));
            text += static_cast<char>(0x80U | (character & 0x3FU));
        }
    }
    return text;
}

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
    if (identifier == zip64Field) readZip64(field, header, offset);
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
    header.storedSize = four(all, 20);
    header.size = four(all, 24);
    header.localOffset = four(all, 42);
    header.name = all.substr(centralLength, nameLength);
    const unsigned system = two(all, 4) >> 8U;
    const Kind kind = kindOf(four(all, 38) >> 16U);
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
    if (!isUtf8) add(fromCp437(name));
    if (!unicodeName.empty()) add(unicodeName);
    return readings;
}

}  // namespace tarvik
