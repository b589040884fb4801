#include "ditto/AttributeFile.h"

#include "Platform/Files/AppleDouble.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sys/xattr.h>

namespace tarvik::ditto::AttributeFile {

namespace {

// RFC 1740: the numbers of its entries. Numbers have their high byte first.
constexpr std::uint32_t resourceFork = 2;
constexpr std::uint32_t finderInfo = 9;
constexpr std::size_t entriesAt = 26;
constexpr std::size_t entryLength = 12;
constexpr std::size_t finderInfoLength = 32;

// What follows the Finder information: two bytes of nothing, then this header and its list.
constexpr std::size_t attributesAt = finderInfoLength + 2;
constexpr std::string_view attributesMark = "ATTR";
constexpr std::size_t attributesHeader = 36;

std::uint32_t highFirst(std::string_view bytes, std::size_t at, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + count; ++i)
        value = value << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
    return value;
}

std::string_view part(std::string_view bytes, std::size_t at, std::size_t length) {
    return at <= bytes.size() && length <= bytes.size() - at ? bytes.substr(at, length) : std::string_view();
}

/// Each one tells its place in the whole file, its length, two bytes of flags, the length of its name with the zero
/// byte at the end, and the name; the next begins at a multiple of four bytes.
void readAttributes(std::string_view bytes, std::size_t at, List& list) {
    constexpr std::size_t fixedLength = 11;
    const std::uint32_t count = highFirst(bytes, at + attributesHeader - 2, 2);
    at += attributesHeader;
    for (std::uint32_t i = 0; i < count && at < bytes.size(); ++i) {
        const std::size_t nameLength = highFirst(bytes, at + 10, 1);
        std::string_view name = part(bytes, at + fixedLength, nameLength);
        name = name.substr(0, std::min(name.find('\0'), name.size()));
        const std::size_t length = highFirst(bytes, at + 4, 4);
        const std::size_t place = highFirst(bytes, at, 4);
        if (!name.empty() && place <= bytes.size() && length <= bytes.size() - place)
            list.emplace_back(name, bytes.substr(place, length));
        at = (at + fixedLength + nameLength + 3) / 4 * 4;
    }
}

void readFinderInfo(std::string_view bytes, std::size_t at, std::size_t length, List& list) {
    const std::string_view info = part(bytes, at, finderInfoLength);
    if (info.find_first_not_of('\0') != std::string_view::npos) list.emplace_back("com.apple.FinderInfo", info);
    if (length > attributesAt && part(bytes, at + attributesAt, attributesMark.size()) == attributesMark)
        readAttributes(bytes, at + attributesAt, list);
}

}  // namespace

List read(std::string_view bytes) {
    List list;
    if (!AppleDouble::isHeader(bytes)) return list;
    const std::uint32_t count = highFirst(bytes, entriesAt - 2, 2);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = entriesAt + i * entryLength;
        const std::size_t at = highFirst(bytes, entry + 4, 4);
        const std::size_t length = highFirst(bytes, entry + 8, 4);
        const std::uint32_t kind = highFirst(bytes, entry, 4);
        if (kind == finderInfo) readFinderInfo(bytes, at, length, list);
        if (const auto fork = part(bytes, at, length); kind == resourceFork && !fork.empty())
            list.emplace_back("com.apple.ResourceFork", fork);
    }
    return list;
}

bool give(const List& attributes, const fs::path& item) {
    return std::all_of(attributes.begin(), attributes.end(), [&](const auto& attribute) {
        const std::string name = "user." + attribute.first;
        return ::lsetxattr(item.c_str(), name.c_str(), attribute.second.data(), attribute.second.size(), 0) == 0;
    });
}

}  // namespace tarvik::ditto::AttributeFile
