#include "hdiutil/Disk.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace tarvik::hdiutil::DiskReader {

namespace {

constexpr std::size_t mostSlices = 128;

struct KnownType {
    std::string_view identifier;
    std::string_view content;
};

constexpr std::array knownTypes = {
    KnownType{"48465300-0000-11AA-AA11-00306543ECAC", "Apple_HFS"},
    KnownType{"7C3457EF-0000-11AA-AA11-00306543ECAC", "Apple_APFS"},
    KnownType{"426F6F74-0000-11AA-AA11-00306543ECAC", "Apple_Boot"},
    KnownType{"C12A7328-F81F-11D2-BA4B-00A0C93EC93B", "EFI"},
    KnownType{"EBD0A0A2-B9E5-4433-87C0-68B6B72699C7", "Microsoft Basic Data"},
};

/// Numbers in what was read; beyond its end there are zeros.
class Numbers {
public:
    explicit Numbers(std::string bytes) : m_bytes(std::move(bytes)) {}

    std::uint64_t big(std::size_t at, std::size_t length) const {
        std::uint64_t number = 0;
        for (std::size_t byte = 0; byte < length; ++byte) number = number << 8 | valueAt(at + byte);
        return number;
    }
    std::uint64_t little(std::size_t at, std::size_t length) const {
        std::uint64_t number = 0;
        for (std::size_t byte = length; byte-- > 0;) number = number << 8 | valueAt(at + byte);
        return number;
    }
    std::string text(std::size_t at, std::size_t length) const {
        const std::string all = at < m_bytes.size() ? m_bytes.substr(at, length) : std::string();
        return all.substr(0, all.find('\0'));
    }

private:
    std::uint64_t valueAt(std::size_t at) const {
        return at < m_bytes.size() ? static_cast<unsigned char>(m_bytes[at]) : 0U;
    }

    std::string m_bytes;
};

/// Counted in units of `unit` bytes, and cut off at the end of the disk. Nothing is left of one that begins behind it.
std::optional<Slice> sliceOf(std::uint64_t first, std::uint64_t count, std::uint64_t unit, std::uint64_t diskSize) {
    const std::uint64_t units = diskSize / unit;
    if (first >= units || count == 0) return std::nullopt;
    Slice slice;
    slice.offset = first * unit;
    slice.size = std::min(count, units - first) * unit;
    return slice;
}

Disk appleLayout(const Read& read, std::uint64_t size) {
    // The driver descriptor tells the size of a block; discs that are also CDs say 2048.
    const Numbers head(read(0, 512));
    const std::uint64_t told = head.big(2, 2);
    for (const std::uint64_t block : {told, std::uint64_t{512}, std::uint64_t{2048}}) {
        if (block < 512 || block > 4096) continue;
        const std::uint64_t count = std::min<std::uint64_t>(Numbers(read(block, 512)).big(4, 4), mostSlices);
        Disk disk;
        for (std::uint64_t entry = 1; entry <= count; ++entry) {
            const Numbers partition(read(block * entry, 512));
            if (partition.text(0, 2) != "PM") break;
            auto slice = sliceOf(partition.big(8, 4), partition.big(12, 4), block, size);
            if (!slice) continue;
            slice->content = slice->unmapped = partition.text(48, 32);
            slice->number = static_cast<int>(entry);
            if (slice->content != "Apple_Free" && slice->content != "Apple_Void") disk.slices.push_back(*slice);
        }
        if (disk.slices.empty()) continue;
        disk.scheme = "Apple_partition_scheme";
        return disk;
    }
    return {};
}

Disk uniqueLayout(const Read& read, std::uint64_t size) {
    constexpr std::uint64_t sector = 512;
    const Numbers header(read(sector, 92));
    if (header.text(0, 8) != "EFI PART") return {};
    const std::uint64_t table = header.little(72, 8);
    const std::uint64_t entrySize = header.little(84, 4);
    const std::uint64_t count = std::min<std::uint64_t>(header.little(80, 4), mostSlices);
    Disk disk{"GUID_partition_scheme", {}};
    if (entrySize < 128 || entrySize > 4096 || table > size / sector) return disk;
    for (std::uint64_t entry = 0; entry < count; ++entry) {
        const Numbers partition(read(table * sector + entry * entrySize, 128));
        const std::string type =
            fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", partition.little(0, 4), partition.little(4, 2),
                        partition.little(6, 2), partition.big(8, 2), partition.big(10, 6));
        const std::uint64_t first = partition.little(32, 8);
        const std::uint64_t last = partition.little(40, 8);
        if (last < first) continue;
        auto slice = sliceOf(first, last - first + 1, sector, size);
        if (!slice || partition.big(0, 8) == 0) continue;
        const auto* known = std::find_if(knownTypes.begin(), knownTypes.end(),
                                         [&](const KnownType& each) { return each.identifier == type; });
        slice->content = known != knownTypes.end() ? std::string(known->content) : type;
        slice->unmapped = type;
        slice->number = static_cast<int>(entry) + 1;
        disk.slices.push_back(*slice);
    }
    return disk;
}

Disk bootRecordLayout(const Read& read, std::uint64_t size) {
    constexpr std::uint64_t hfsType = 0xAF;
    const Numbers record(read(0, 512));
    if (record.big(510, 2) != 0x55AA) return {};
    Disk disk{"FDisk_partition_scheme", {}};
    for (int entry = 0; entry < 4; ++entry) {
        const std::size_t at = 446 + 16 * static_cast<std::size_t>(entry);
        auto slice = sliceOf(record.little(at + 8, 4), record.little(at + 12, 4), 512, size);
        const std::uint64_t type = record.little(at + 4, 1);
        if (!slice || type == 0) continue;
        slice->content = type == hfsType ? "Apple_HFS" : fmt::format("0x{:02X}", type);
        slice->unmapped = fmt::format("0x{:02X}", type);
        slice->number = entry + 1;
        disk.slices.push_back(*slice);
    }
    return disk.slices.empty() ? Disk() : disk;
}

}  // namespace

Disk layout(const Read& read, std::uint64_t size) {
    if (Disk disk = appleLayout(read, size); !disk.scheme.empty()) return disk;
    if (Disk disk = uniqueLayout(read, size); !disk.scheme.empty()) return disk;
    return bootRecordLayout(read, size);
}

std::optional<Format> formatAt(const Read& read, std::uint64_t offset) {
    const std::string hfs = read(offset + 1024, 2);
    if (hfs == "H+" || hfs == "HX" || hfs == "BD") return Format::hfs;
    if (read(offset + 32, 4) == "NXSB") return Format::apfs;
    if (read(offset + 32769, 5) == "CD001") return Format::iso;
    return std::nullopt;
}

std::string contentOfName(const std::string& name) {
    const std::size_t open = name.rfind('(');
    const std::size_t colon = name.rfind(" : ");
    if (open == std::string::npos || colon == std::string::npos || colon < open) return {};
    return name.substr(open + 1, colon - open - 1);
}

std::string unmappedOf(const std::string& content) {
    const std::string plain = content == "Apple_HFSX" ? "Apple_HFS" : content;
    for (const KnownType& known : knownTypes)
        if (known.content == plain) return std::string(known.identifier);
    return content;
}

}  // namespace tarvik::hdiutil::DiskReader
