#include "StandIns/hdiutil/APFSContainer.h"

#include "Platform/Processes/CommandRunner.h"
#include "Practice/DiskImages/Bytes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarvik::test::APFSContainer {

namespace {

using Practice::Bytes;

constexpr const char* program = "/usr/sbin/mkapfs";
constexpr std::size_t block = 4096;
constexpr std::size_t madeBlocks = 131'329;  // Smaller ones mkapfs does not make.
constexpr std::size_t keptBlocks = 22'000;   // Everything that it writes lies in front of this.
constexpr std::size_t firstFree = 21'100;
constexpr std::uint64_t firstItem = 16;
constexpr std::uint64_t rootFolder = 2;
constexpr std::uint64_t time = 1'700'000'000'000'000'000;  // nanoseconds

struct Record {
    std::uint64_t number;
    std::uint64_t type;
    std::string key;  ///< what follows number and type
    std::string value;
};

std::uint64_t littleAt(const std::string& bytes, std::size_t at, std::size_t length) {
    std::uint64_t number = 0;
    for (std::size_t byte = length; byte-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[at + byte]);
    return number;
}

/// Fletcher's sum over 64 bits, of all but the sum itself.
void seal(std::string& disk, std::size_t number) {
    constexpr std::uint64_t modulus = 0xFFFFFFFF;
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    for (std::size_t at = number * block + 8; at < (number + 1) * block; at += 4) {
        low = (low + littleAt(disk, at, 4)) % modulus;
        high = (high + low) % modulus;
    }
    const std::uint64_t first = modulus - (low + high) % modulus;
    const std::uint64_t second = modulus - (low + first) % modulus;
    disk.replace(number * block, 8, Bytes().little(first | second << 32).all());
}

/// By which names are found: CRC-32C of the characters in small letters.
std::uint32_t hashOf(const std::string& name) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char letter : name)
        for (const unsigned byte : std::array<unsigned, 4>{
                 static_cast<unsigned char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter), 0, 0, 0}) {
            sum ^= byte;
            for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum & 1 ? 0x82F63B78U : 0U);
        }
    return sum & 0x3FFFFF;
}

std::string nameText(const std::string& name) {
    return name + '\0';
}

std::string inode(std::uint64_t folder, std::uint64_t number, const std::string& name, mode_t mode, std::size_t size,
                  std::uint32_t entries) {
    Bytes bytes;
    bytes.little(folder).little(number).little(time).little(time).little(time).little(time).little(
        std::uint64_t{0x8000});
    bytes.little(entries).zeros(4 + 4 + 4).little(std::uint32_t{501}).little(std::uint32_t{20});
    bytes.little(static_cast<std::uint16_t>(mode)).zeros(2 + 8);
    const bool hasData = S_ISREG(mode);
    const std::size_t nameSize = (name.size() + 8) / 8 * 8;
    bytes.little(std::uint16_t(hasData ? 2 : 1)).little(static_cast<std::uint16_t>(nameSize + (hasData ? 40 : 0)));
    bytes.text("\4\2").little(static_cast<std::uint16_t>(name.size() + 1));
    if (hasData) bytes.text("\x08\x20").little(std::uint16_t{40});
    bytes.text(name).zeros(nameSize - name.size());
    const std::uint64_t taken = (size + block - 1) / block * block;
    if (hasData) bytes.little(std::uint64_t{size}).little(taken).zeros(24);
    return std::move(bytes).all();
}

std::vector<Record> recordsOf(const std::vector<Item>& items, std::string& disk) {
    constexpr std::uint64_t xattr = 4;
    constexpr std::uint64_t dataStream = 6;
    constexpr std::uint64_t extent = 8;
    constexpr std::uint64_t entry = 9;
    std::vector<Record> records;
    std::vector<std::uint32_t> entries(items.size() + 1);
    std::vector<std::uint32_t> names(items.size() + 1, 1);
    for (const Item& item : items) {
        ++entries[item.folder];
        ++names[item.sameAs];
    }
    const auto numberAt = [](std::size_t place) { return place == 0 ? rootFolder : firstItem + place - 1; };
    const auto enter = [&](std::uint64_t folder, const std::string& name, std::uint64_t number, std::uint16_t type) {
        const auto length = static_cast<std::uint32_t>(name.size() + 1);
        records.push_back({folder, entry, Bytes().little(length | hashOf(name) << 10).text(nameText(name)).all(),
                           Bytes().little(number).little(time).little(type).all()});
    };
    enter(1, "private-dir", 3, 4);
    enter(1, "root", rootFolder, 4);
    records.push_back({rootFolder, 3, {}, inode(1, rootFolder, "root", 040755, 0, entries[0])});
    records.push_back({3, 3, {}, inode(1, 3, "private-dir", 040755, 0, 0)});
    std::size_t freeBlock = firstFree;
    for (std::size_t at = 0; at < items.size(); ++at) {
        const Item& item = items[at];
        const std::uint64_t number = numberAt(item.sameAs > 0 ? item.sameAs : at + 1);
        const std::uint16_t type = S_ISDIR(item.mode) ? 4 : S_ISLNK(item.mode) ? 10 : 8;
        enter(numberAt(item.folder), item.name, number, type);
        if (item.sameAs > 0) continue;
        records.push_back({number,
                           3,
                           {},
                           inode(numberAt(item.folder), number, item.name, item.mode, item.content.size(),
                                 S_ISDIR(item.mode) ? entries[at + 1] : names[at + 1])});
        if (S_ISLNK(item.mode)) {
            const std::string name = nameText("com.apple.fs.symlink");
            records.push_back({number, xattr, Bytes().little(static_cast<std::uint16_t>(name.size())).text(name).all(),
                               Bytes()
                                   .little(std::uint16_t{6})
                                   .little(static_cast<std::uint16_t>(item.content.size() + 1))
                                   .text(nameText(item.content))
                                   .all()});
        } else if (S_ISREG(item.mode)) {
            records.push_back({number, dataStream, {}, Bytes().little(std::uint32_t{1}).all()});
            if (item.content.empty()) continue;
            const std::size_t blocks = (item.content.size() + block - 1) / block;
            records.push_back(
                {number, extent, Bytes().little(std::uint64_t{0}).all(),
                 Bytes().little(std::uint64_t{blocks * block}).little(std::uint64_t{freeBlock}).zeros(8).all()});
            disk.replace(freeBlock * block, item.content.size(), item.content);
            freeBlock += blocks;
        }
    }
    std::stable_sort(records.begin(), records.end(), [](const Record& one, const Record& other) {
        return std::pair(one.number, one.type) < std::pair(other.number, other.type);
    });
    return records;
}

/// The node of the tree at a block, filled anew: it is root and leaf at once.
void fill(std::string& disk, std::size_t number, const std::vector<Record>& records) {
    constexpr std::size_t head = 56;
    constexpr std::size_t information = 40;
    const std::size_t table = records.size() * 8;
    Bytes places;
    Bytes keys;
    std::string values;
    std::size_t longestKey = 0;
    std::size_t longestValue = 0;
    for (const Record& record : records) {
        const std::string key = Bytes().little(record.type << 60 | record.number).text(record.key).all();
        values.insert(0, record.value);  // Values grow downwards from the end.
        places.little(static_cast<std::uint16_t>(keys.size())).little(static_cast<std::uint16_t>(key.size()));
        places.little(static_cast<std::uint16_t>(values.size()))
            .little(static_cast<std::uint16_t>(record.value.size()));
        keys.text(key);
        longestKey = std::max(longestKey, key.size());
        longestValue = std::max(longestValue, record.value.size());
    }
    const std::size_t used = head + table + keys.size() + values.size() + information;
    if (used > block) throw std::runtime_error("too many items for one node");
    Bytes node;
    node.text(disk.substr(number * block, 32)).little(std::uint16_t{3}).little(std::uint16_t{0});
    node.little(static_cast<std::uint32_t>(records.size()))
        .little(std::uint16_t{0})
        .little(static_cast<std::uint16_t>(table));
    node.little(static_cast<std::uint16_t>(keys.size())).little(static_cast<std::uint16_t>(block - used));
    node.little(std::uint16_t{0xFFFF}).zeros(2).little(std::uint16_t{0xFFFF}).zeros(2);
    node.text(places.all()).text(keys.all()).zeros(block - used).text(values);
    node.text(disk.substr((number + 1) * block - information, 16));
    node.little(static_cast<std::uint32_t>(longestKey)).little(static_cast<std::uint32_t>(longestValue));
    node.little(std::uint64_t{records.size()}).little(std::uint64_t{1});
    disk.replace(number * block, block, node.all());
    seal(disk, number);
}

}  // namespace

std::optional<std::string> unavailableReason() {
    if (::access(program, X_OK) != 0) return "mkapfs is not installed.";
    return std::nullopt;
}

std::string bytes(const fs::path& scratch, const std::string& name, const std::vector<Item>& items) {
    const fs::path path = scratch / "container";
    std::ofstream(path).close();
    fs::resize_file(path, madeBlocks * block);
    const auto made = CommandRunner::run(program, {"-L", name, path.native()});
    if (made.status != 0) throw std::runtime_error("mkapfs: " + made.stderr);
    std::string disk(keptBlocks * block, '\0');
    std::ifstream(path, std::ios::binary).read(disk.data(), static_cast<std::streamsize>(disk.size()));
    fs::remove(path);

    const std::vector<Record> records = recordsOf(items, disk);
    for (std::size_t number = 0; number < keptBlocks; ++number) {
        const std::size_t at = number * block;
        const bool isContainer = disk.compare(at + 32, 4, "NXSB") == 0;
        if (isContainer) {
            disk.replace(at + 40, 8, Bytes().little(std::uint64_t{keptBlocks}).all());
            seal(disk, number);
        }
        constexpr std::uint64_t tree = 2;
        constexpr std::uint64_t ofItems = 0xE;
        if (littleAt(disk, at + 24, 4) == tree && littleAt(disk, at + 28, 4) == ofItems) fill(disk, number, records);
    }
    return disk;
}

}  // namespace tarvik::test::APFSContainer
