#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What lies on a disk, as its own first bytes tell: pure readers of bytes, which may be anything.
namespace tarvik::hdiutil {

enum class Format { hfs, apfs, iso };

/// One slice of a partitioned disk.
struct Slice {
    std::string content;   ///< what it says it holds, in the words of the property list: "Apple_HFS"
    std::string unmapped;  ///< the same in the words of the partition table
    int number = 0;        ///< as in /dev/disk4s1
    std::uint64_t offset = 0;
    std::uint64_t size = 0;

    bool operator==(const Slice&) const = default;
};

struct Disk {
    std::string scheme;  ///< "GUID_partition_scheme"; empty for a disk that is one volume
    std::vector<Slice> slices;

    bool operator==(const Disk&) const = default;
};

namespace DiskReader {

/// Gives up to so many bytes from an offset on.
using Read = std::function<std::string(std::uint64_t offset, std::size_t count)>;

/// The partitions of a disk of so many bytes; none where it bears no table. Tables are those of Apple, of the UEFI
/// specification, and of a PC's master boot record, in this order. A slice beyond the end is cut off there.
Disk layout(const Read& read, std::uint64_t size);

/// What a volume that begins at the offset is; nothing when it is none that a Mac mounts here.
std::optional<Format> formatAt(const Read& read, std::uint64_t offset);

/// Of the name that an image gives a stretch of its disk, "disk image (Apple_HFS : 4)", the part "Apple_HFS".
std::string contentOfName(const std::string& name);

/// The type that a GUID partition table bears for a content of Apple's; the content itself for any other.
std::string unmappedOf(const std::string& content);

}  // namespace DiskReader

}  // namespace tarvik::hdiutil
