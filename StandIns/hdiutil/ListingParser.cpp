#include "hdiutil/ListingParser.h"

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace tarvik::hdiutil {

namespace {

/// Longer lines stand for nothing that could be made; what is behind that is dropped.
constexpr std::size_t longestLine = std::size_t{4} << 20;

std::int64_t numberOf(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && number >= 0 ? number : 0;
}

/// "2026-11-22 20:40:04.5", in universal time.
timespec timeOf(std::string_view text) {
    std::tm parts{};
    const std::string whole(text.substr(0, 19));
    if (std::sscanf(whole.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &parts.tm_sec) != 6)
        return {};
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    timespec time{};
    time.tv_sec = ::timegm(&parts);
    long unit = 100'000'000;
    for (std::size_t at = 20; at < text.size() && text[at] >= '0' && text[at] <= '9' && unit > 0; ++at, unit /= 10)
        time.tv_nsec += (text[at] - '0') * unit;
    return time;
}

/// Of "drwxr-xr-x", the nine letters. Bits that give somebody else's rights count for nothing on an image.
mode_t permissionsOf(const std::string& mode) {
    mode_t permissions = 0;
    for (std::size_t at = 1; at < 10; ++at) {
        const char letter = mode[at];
        if (letter != '-' && letter != 'S' && letter != 'T') permissions |= static_cast<mode_t>(0400U >> (at - 1));
    }
    return permissions;
}

}  // namespace

void ListingParser::take(std::string_view piece) {
    while (!piece.empty()) {
        const std::size_t end = piece.find('\n');
        const std::string_view part = piece.substr(0, end);
        if (m_line.size() < longestLine) m_line += part;
        if (end == std::string_view::npos) return;
        takeLine(m_line);
        m_line.clear();
        piece.remove_prefix(end + 1);
    }
}

void ListingParser::end() {
    if (!m_line.empty()) takeLine(m_line);
    m_line.clear();
    give();
}

void ListingParser::takeLine(std::string_view line) {
    if (!m_isInEntries) {
        takeHeader(line);
    } else if (line.empty()) {
        give();
    } else if (const std::size_t equals = line.find(" = "); equals != std::string_view::npos) {
        takeField(line.substr(0, equals), line.substr(equals + 3));
    }
}

void ListingParser::takeHeader(std::string_view line) {
    constexpr std::string_view type = "Type = ";
    constexpr std::string_view name = "volume_name: ";
    if (line == "----------") m_isInEntries = true;
    if (line.starts_with(type)) m_types.emplace_back(line.substr(type.size()));
    if (line.starts_with(name)) m_volumeName = line.substr(name.size());
}

void ListingParser::takeField(std::string_view key, std::string_view value) {
    if (key == "Path") {
        give();
        m_entry.emplace().path = value;
    }
    if (!m_entry) return;
    if (key == "Folder") m_isFolder = value == "+";
    if (key == "Size") m_entry->size = numberOf(value);
    if (key == "Modified") m_entry->modified = timeOf(value);
    if (key == "Mode") m_mode = value;
    if (key == "Alternate Stream") m_isAttribute = value == "+";
    if (key == "Comment") m_entry->comment = value;
}

void ListingParser::give() {
    if (!m_entry) return;
    Entry entry = *std::exchange(m_entry, std::nullopt);
    const std::string mode = std::exchange(m_mode, {});
    const bool isFolder = std::exchange(m_isFolder, false);
    const std::size_t colon = entry.path.rfind(':');
    const char letter = mode.size() < 10 ? (isFolder ? 'd' : '-') : mode.front();
    if (mode.size() >= 10)
        entry.permissions = permissionsOf(mode);
    else if (isFolder)
        entry.permissions = 0755;
    if (std::exchange(m_isAttribute, false) && colon != std::string::npos) {
        entry.type = Entry::Type::attribute;
        entry.attribute = entry.path.substr(colon + 1);
        entry.path.resize(colon);
    } else if (isFolder) {
        entry.type = Entry::Type::folder;
    } else if (letter == 'l') {
        entry.type = Entry::Type::link;
    } else if (letter == '-') {
        entry.type = Entry::Type::file;
    }
    m_sink(entry);
}

}  // namespace tarvik::hdiutil
