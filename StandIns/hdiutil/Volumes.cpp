#include "hdiutil/Volumes.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"
#include "hdiutil/Disc.h"
#include "hdiutil/EntrySpool.h"
#include "hdiutil/ListingParser.h"
#include "hdiutil/VolumeStream.h"
#include "hdiutil/VolumeWriter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace tarvik::hdiutil::Volumes {

namespace {

constexpr std::size_t longestName = 255;  // In bytes: no folder on Linux has a longer one.

[[noreturn]] void failAsDamaged() {
    throw Failure("hdiutil", 1, "corrupt image");
}

/// The folder that holds all of an HFS volume in the list, and bears its name: the first entry.
struct Container {
    std::string path;
    bool isKnown = false;
};

/// What a Mac keeps at the top of such a volume and shows to nobody. 7-Zip puts the first into brackets for the
/// characters that no text shows.
bool isPrivate(std::string_view pathInVolume) {
    constexpr std::array<std::string_view, 4> names = {"[HFS+ Private Data]", ".HFS+ Private Directory Data\r",
                                                       ".journal", ".journal_info_block"};
    return std::find(names.begin(), names.end(), pathInVolume.substr(0, pathInVolume.find('/'))) != names.end();
}

/// Whether the hidden entry is what several names share.
bool isShared(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.starts_with("iNode") || name.starts_with("dir_");
}

Opened openHFS(const SevenZip::Source& source, const fs::path& folder) {
    EntrySpool entries;
    Container container;
    bool hasHardLinks = false;
    ListingParser parser([&](const Entry& entry) {
        if (!container.isKnown) container = {entry.path, true};
        const std::string_view path = entry.path;
        if (path.size() <= container.path.size() || !isPrivate(path.substr(container.path.size() + 1)))
            return entries.add(entry);
        if (isShared(path)) hasHardLinks = true;
        Entry hidden = entry;
        hidden.type = Entry::Type::other;
        entries.add(hidden);
    });
    const bool isWhole = SevenZip::list(source, [&](std::string_view piece) { parser.take(piece); });
    parser.end();
    const bool isVolume = container.isKnown && container.path.find('/') == std::string::npos;
    if (!isWhole || !isVolume) failAsDamaged();
    // 7-Zip takes each name of a file that has several for an empty file.
    if (hasHardLinks) throw Failure("hdiutil", 1, "volumes with hard links cannot be read here");
    requireSpace(folder, entries.neededBytes());
    VolumeWriter writer(folder);
    entries.rewind();
    VolumeStream stream(entries, container.path, writer);
    if (!SevenZip::read(source, {}, [&](std::string_view bytes) { stream.take(bytes); })) failAsDamaged();
    stream.end();
    writer.finish();
    return {shownName(container.path), "hfs", folder};
}

Opened openAPFS(const SevenZip::Source& source, const fs::path& folder) {
    EntrySpool entries;
    ListingParser parser([&](const Entry& entry) { entries.add(entry); });
    const bool isWhole = SevenZip::list(source, [&](std::string_view piece) { parser.take(piece); });
    parser.end();
    if (!isWhole) failAsDamaged();
    requireSpace(folder, entries.neededBytes());
    VolumeWriter writer(folder);
    entries.rewind();
    VolumeStream stream(entries, {}, writer);
    if (!SevenZip::read(source, {}, [&](std::string_view bytes) { stream.take(bytes); })) failAsDamaged();
    stream.end();
    writer.finish();
    return {shownName(parser.volumeName()), "apfs", folder};
}

fs::path newFolder(const fs::path& parent) {
    for (int number = 0;; ++number) {
        fs::path folder = parent / std::to_string(number);
        if (Files::createNewFolder(folder)) return folder;
    }
}

}  // namespace

std::vector<Opened> open(const SevenZip::Source& source, Format format, const fs::path& parent) {
    const fs::path folder = newFolder(parent);
    switch (format) {
        case Format::hfs:
            return {openHFS(source, folder)};
        case Format::apfs:
            return {openAPFS(source, folder)};
        case Format::iso:
            Disc::open(source.file, folder);
            return {{shownName(Disc::name(source.file)), "cd9660", folder}};
    }
    return {};
}

std::string shownName(std::string_view name) {
    std::string shown(name.substr(0, name.find('\0')));
    for (char& letter : shown) {
        if (letter == '/') letter = ':';
        if (static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F) letter = '_';  // No property list holds it.
    }
    // Cut between characters, with room for a number behind it.
    if (shown.size() > longestName - 8) {
        std::size_t end = longestName - 8;
        while (end > 0 && (static_cast<unsigned char>(shown[end]) & 0xC0U) == 0x80) --end;
        shown.resize(end);
    }
    // What begins with a dot would be hidden, and is what the folder above is called.
    if (shown.empty() || shown.front() == '.' || !Text::isValidUtf8(shown)) return "Untitled";
    return shown;
}

void requireSpace(const fs::path& folder, std::int64_t bytes) {
    const auto status = fileSystemStatus(folder);
    if (status && status->availableBytes && *status->availableBytes < bytes)
        throw Failure("hdiutil", 1, systemErrorText(ENOSPC));
}

}  // namespace tarvik::hdiutil::Volumes
