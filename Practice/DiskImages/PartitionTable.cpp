#include "Practice/DiskImages/PartitionTable.h"

#include "Practice/DiskImages/Bytes.h"

#include <cstddef>
#include <utility>
#include <zlib.h>

namespace tarvik::Practice::PartitionTable {

namespace {

constexpr std::uint64_t firstVolume = 40;  // Behind the table, at a multiple of eight sectors.
constexpr std::size_t entries = 128;
constexpr std::size_t entrySize = 128;
constexpr std::uint64_t tableSectors = entries * entrySize / sectorSize;

std::uint32_t checksum(const std::string& bytes) {
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

/// Stands for a number that nobody else has: the same on every run.
Bytes& identifier(Bytes& bytes, std::uint32_t number) {
    return bytes.little(std::uint32_t{0x7A417669} + number)
        .little(std::uint16_t{0x4B1D})
        .little(std::uint16_t{0x4C2E})
        .text(
            "\x8A\x5F"
            "Tarvik");
}

/// The table's own head, at `place`; `other` is where its double lies, `table` where its entries do.
std::string header(std::uint64_t place, std::uint64_t other, std::uint64_t table, std::uint64_t last,
                   std::uint32_t entriesChecksum) {
    const auto with = [&](std::uint32_t ownChecksum) {
        Bytes bytes;
        bytes.text("EFI PART").little(std::uint32_t{0x10000}).little(std::uint32_t{92}).little(ownChecksum).zeros(4);
        bytes.little(place).little(other).little(2 + tableSectors).little(last);
        identifier(bytes, 0).little(table).little(static_cast<std::uint32_t>(entries));
        bytes.little(static_cast<std::uint32_t>(entrySize)).little(entriesChecksum);
        return std::move(bytes).all();
    };
    return Bytes().text(with(checksum(with(0)))).padTo(sectorSize).all();
}

std::string protectiveRecord(std::uint64_t sectors) {
    Bytes bytes;
    bytes.zeros(446).zeros(1).text(std::string_view("\0\2\0", 3)).little(std::uint8_t{0xEE}).text("\xFF\xFF\xFF");
    bytes.little(std::uint32_t{1}).little(static_cast<std::uint32_t>(sectors - 1)).zeros(48).text("\x55\xAA");
    return std::move(bytes).all();
}

}  // namespace

std::vector<Stretch> around(const std::vector<std::string>& volumes) {
    Bytes table;
    std::uint64_t at = firstVolume;
    for (std::uint32_t number = 0; number < volumes.size(); ++number) {
        const std::uint64_t sectors = volumes[number].size() / sectorSize;
        table.little(std::uint32_t{0x48465300}).little(std::uint16_t{0}).little(std::uint16_t{0x11AA});
        table.text(std::string_view("\xAA\x11\x00\x30\x65\x43\xEC\xAC", 8));
        identifier(table, number + 1).little(at).little(at + sectors - 1).zeros(8);
        for (const char letter : std::string_view("disk image")) table.little(std::uint16_t(letter));
        table.padTo(entrySize);
        at += sectors;
    }
    table.zeros(entries * entrySize - table.size());
    const std::uint64_t last = at + tableSectors;
    const std::uint32_t sum = checksum(table.all());

    std::vector<Stretch> stretches = {
        {"Protective Master Boot Record (MBR : 0)", protectiveRecord(last + 1)},
        {"GPT Header (Primary GPT Header : 1)", header(1, last, 2, at - 1, sum)},
        {"GPT Partition Data (Primary GPT Table : 2)", table.all()},
        {" (Apple_Free : 3)", std::string((firstVolume - 2 - tableSectors) * sectorSize, '\0')},
    };
    for (const std::string& volume : volumes)
        stretches.push_back({"disk image (Apple_HFS : " + std::to_string(stretches.size()) + ")", volume});
    const std::string next = std::to_string(stretches.size());
    stretches.push_back({"GPT Partition Data (Backup GPT Table : " + next + ")", table.all()});
    const std::string behind = std::to_string(stretches.size());
    stretches.push_back({"GPT Header (Backup GPT Header : " + behind + ")", header(last, 1, at, at - 1, sum)});
    return stretches;
}

}  // namespace tarvik::Practice::PartitionTable
