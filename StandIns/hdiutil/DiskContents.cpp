#include "hdiutil/DiskContents.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "hdiutil/CompressedImage.h"
#include "hdiutil/ListingParser.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <functional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::hdiutil::DiskContents {

namespace {

/// A file of what lies on a disk, for as long as it is needed.
class RawFile {
public:
    explicit RawFile(const fs::path& folder) {
        for (int number = 0; !m_file; ++number) {  // A disk may hold a disk.
            m_path = folder / ("raw-" + std::to_string(number));
            m_file = FileDescriptor(::open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
            if (!m_file && errno != EEXIST) throw Failure("hdiutil", 1, systemErrorText(errno));
        }
    }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;
    ~RawFile() { ::unlink(m_path.c_str()); }

    /// Zeros, of which disks have many, take no room.
    void write(std::string_view bytes) {
        if (bytes.find_first_not_of('\0') == std::string_view::npos) {
            m_size += static_cast<off_t>(bytes.size());
            return;
        }
        while (!bytes.empty()) {
            const ssize_t written = ::pwrite(m_file.get(), bytes.data(), bytes.size(), m_size);
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) throw Failure("hdiutil", 1, systemErrorText(errno));
            bytes.remove_prefix(static_cast<std::size_t>(written));
            m_size += written;
        }
    }
    const fs::path& finish() {
        if (::ftruncate(m_file.get(), m_size) != 0) throw Failure("hdiutil", 1, systemErrorText(errno));
        return m_path;
    }

private:
    fs::path m_path;
    FileDescriptor m_file;
    off_t m_size = 0;
};

DiskReader::Read readerOf(const ImageFile& image) {
    return [&image](std::uint64_t offset, std::size_t count) { return image.bytesAt(offset, count); };
}

const char* typeOf(Format format) {
    return format == Format::apfs ? "APFS" : "HFS";
}

bool holdsVolume(const Slice& slice) {
    return slice.content.starts_with("Apple_HFS") || slice.content.starts_with("Apple_APFS");
}

SevenZip::Source sourceOf(const fs::path& file, Format format) {
    return {file, format == Format::iso ? "" : typeOf(format)};
}

/// A disk as it is: the whole of it, or the volumes of its slices, which are copied out one after the other.
Contents openRaw(const ImageFile& disk, const fs::path& folder) {
    const auto read = readerOf(disk);
    Disk layout = DiskReader::layout(read, disk.size());
    const bool hasVolumes = std::any_of(layout.slices.begin(), layout.slices.end(), holdsVolume);
    if (!hasVolumes) {
        const auto format = DiskReader::formatAt(read, 0);
        if (!format) return {layout.scheme, {}};
        Slice whole;
        if (*format != Format::iso)
            whole.content = whole.unmapped = *format == Format::hfs ? "Apple_HFS" : "Apple_APFS";
        return {{}, {{whole, Volumes::open(sourceOf(disk.path(), *format), *format, folder)}}};
    }
    Contents contents{layout.scheme, {}};
    for (const Slice& slice : layout.slices) {
        std::vector<Volumes::Opened> opened;
        const auto format = holdsVolume(slice) ? DiskReader::formatAt(read, slice.offset) : std::nullopt;
        if (format) {
            RawFile copy(folder);
            for (std::uint64_t done = 0; done < slice.size;) {
                const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(1U << 20, slice.size - done));
                const std::string bytes = disk.bytesAt(slice.offset + done, count);
                if (bytes.empty()) break;
                copy.write(bytes);
                done += bytes.size();
            }
            opened = Volumes::open(sourceOf(copy.finish(), *format), *format, folder);
        }
        contents.slices.emplace_back(slice, std::move(opened));
    }
    return contents;
}

/// One stretch of the disk in a compressed image, as 7-Zip names it.
struct Stretch {
    Slice slice;
    std::string item;
    std::int64_t size;
};

/// The stretches of the disk that hold something, and the scheme by which they are parted.
std::vector<Stretch> stretchesOf(const ImageFile& image, std::string& scheme) {
    std::vector<Stretch> stretches;
    int entries = 0;
    ListingParser parser([&](const Entry& entry) {
        const std::string content = DiskReader::contentOfName(entry.comment);
        ++entries;
        if (content == "Primary GPT Header") scheme = "GUID_partition_scheme";
        if (content == "Apple_partition_map") scheme = "Apple_partition_scheme";
        if (content == "MBR" && scheme.empty()) scheme = "FDisk_partition_scheme";
        const bool isTable = content.find("GPT") != std::string::npos || content == "MBR" || content == "DDM" ||
                             content == "Driver Descriptor Map";
        if (isTable || content == "Apple_Free" || content == "Apple_Void") return;
        Slice slice;
        slice.content = content;
        slice.number = static_cast<int>(stretches.size()) + 1;
        stretches.push_back({std::move(slice), entry.path, entry.size});
    });
    const bool isWhole = SevenZip::list({image.path(), "Dmg"}, [&](std::string_view piece) { parser.take(piece); });
    parser.end();
    if (!isWhole || entries == 0) throw Failure("hdiutil", 1, "image not recognized");
    if (entries == 1) scheme.clear();
    for (Stretch& stretch : stretches)
        stretch.slice.unmapped =
            scheme.starts_with("GUID") ? DiskReader::unmappedOf(stretch.slice.content) : stretch.slice.content;
    return stretches;
}

/// Whether 7-Zip finds the volume in the image by itself, being the only one: then no copy of the disk is needed.
bool isFoundInPlace(const Stretch& stretch) {
    const std::string extension = fs::path(stretch.item).extension();
    return extension == ".hfs" || extension == ".hfsx" || extension == ".apfs";
}

std::vector<Volumes::Opened> openInPlace(const ImageFile& image, const Slice& slice, const fs::path& folder) {
    const Format format = slice.content.starts_with("Apple_APFS") ? Format::apfs : Format::hfs;
    return Volumes::open({image.path(), std::string(typeOf(format)) + ".Dmg"}, format, folder);
}

Contents openCompressed(const ImageFile& image, const fs::path& folder) {
    CompressedImage::check(image);
    std::string scheme;
    const std::vector<Stretch> stretches = stretchesOf(image, scheme);
    const auto volumes =
        std::count_if(stretches.begin(), stretches.end(), [](const Stretch& each) { return holdsVolume(each.slice); });
    Contents contents{scheme, {}};
    for (const Stretch& stretch : stretches) {
        std::vector<Volumes::Opened> opened;
        const bool isWanted = holdsVolume(stretch.slice) || scheme.empty();
        if (volumes == 1 && holdsVolume(stretch.slice) && isFoundInPlace(stretch)) {
            opened = openInPlace(image, stretch.slice, folder);
        } else if (isWanted) {
            Volumes::requireSpace(folder, stretch.size);
            RawFile raw(folder);
            if (!SevenZip::read({image.path(), "Dmg"}, stretch.item, [&](std::string_view bytes) { raw.write(bytes); }))
                throw Failure("hdiutil", 1, "corrupt image");
            const ImageFile disk(raw.finish());
            if (scheme.empty()) return openRaw(disk, folder);
            if (const auto format = DiskReader::formatAt(readerOf(disk), 0))
                opened = Volumes::open(sourceOf(disk.path(), *format), *format, folder);
        }
        contents.slices.emplace_back(stretch.slice, std::move(opened));
    }
    return contents;
}

}  // namespace

Contents open(const ImageFile& image, const fs::path& folder) {
    const bool isCompressed = CompressedImage::isOne(image);
    Contents contents = isCompressed ? openCompressed(image, folder) : openRaw(image, folder);
    const bool hasVolume = std::any_of(contents.slices.begin(), contents.slices.end(),
                                       [](const auto& each) { return !each.second.empty(); });
    if (hasVolume) return contents;
    const bool isDisk = isCompressed || !contents.scheme.empty();
    throw Failure("hdiutil", 1, isDisk ? "no mountable file systems" : "image not recognized");
}

}  // namespace tarvik::hdiutil::DiskContents
