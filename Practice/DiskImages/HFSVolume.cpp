#include "Practice/DiskImages/HFSVolume.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Practice/DiskImages/Bytes.h"
#include "Practice/DiskImages/CatalogTree.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/stat.h>
#include <utility>

namespace tarvik::Practice::HFSVolume {

namespace {

using CatalogTree::Record;

constexpr std::size_t blockSize = 4096;
constexpr std::uint32_t rootParent = 1;
constexpr std::uint32_t rootFolder = 2;
constexpr std::uint32_t firstItem = 16;

/// Seconds since 1904, which such volumes count from.
std::uint32_t stamp(std::time_t time) {
    return static_cast<std::uint32_t>(time + 2082844800);
}

std::uint32_t blocksOf(std::size_t size) {
    return static_cast<std::uint32_t>((size + blockSize - 1) / blockSize);
}

/// Hands out the blocks of the volume one behind the other.
class Disk {
public:
    explicit Disk(std::uint32_t used) : m_next(used) {}

    /// What a record says of the data, which comes to lie behind all before it.
    std::string fork(const std::string& data) {
        const std::uint32_t count = blocksOf(data.size());
        Bytes bytes;
        bytes.big(static_cast<std::uint64_t>(data.size())).big(std::uint32_t{0}).big(count);
        bytes.big(count > 0 ? m_next : 0).big(count).zeros(56);
        m_next += count;
        m_data.text(data).padTo(blockSize);
        return std::move(bytes).all();
    }
    std::uint32_t next() const { return m_next; }
    const std::string& data() const { return m_data.all(); }

private:
    std::uint32_t m_next;
    Bytes m_data;
};

std::string nameText(const std::u16string& name) {
    Bytes bytes;
    bytes.big(static_cast<std::uint16_t>(name.size()));
    for (const char16_t unit : name) bytes.big(static_cast<std::uint16_t>(unit));
    return std::move(bytes).all();
}

std::string catalogKey(std::uint32_t folder, const std::u16string& name) {
    const auto length = static_cast<std::uint16_t>(6 + 2 * name.size());
    return Bytes().big(length).big(folder).text(nameText(name)).all();
}

std::string threadOf(std::uint16_t type, std::uint32_t folder, const std::u16string& name) {
    return Bytes().big(type).zeros(2).big(folder).text(nameText(name)).all();
}

Bytes& dates(Bytes& bytes, std::time_t modified) {
    for (int date = 0; date < 4; ++date) bytes.big(stamp(modified));
    return bytes.zeros(4);
}

Bytes& permissions(Bytes& bytes, mode_t mode, std::uint32_t special = 0) {
    bytes.big(std::uint32_t{501}).big(std::uint32_t{20}).zeros(2);
    return bytes.big(static_cast<std::uint16_t>(mode)).big(special);
}

std::string folderRecord(std::uint32_t number, mode_t mode, std::time_t modified, std::uint32_t entries) {
    Bytes bytes;
    bytes.big(std::uint16_t{1}).zeros(2).big(entries).big(number);
    permissions(dates(bytes, modified), mode).zeros(16 + 16 + 8);
    return std::move(bytes).all();
}

std::string fileRecord(std::uint32_t number, const Item& item, Disk& disk) {
    Bytes bytes;
    bytes.big(std::uint16_t{2}).big(std::uint16_t{2}).zeros(4).big(number);
    permissions(dates(bytes, item.modified), item.mode, item.special);
    const std::string type = S_ISLNK(item.mode) ? "slnkrhap" : item.typeAndCreator;
    bytes.text(type).zeros(8 - std::min<std::size_t>(type.size(), 8));
    bytes.zeros(8 + 16 + 8).text(disk.fork(item.content)).text(disk.fork(item.resourceFork));
    return std::move(bytes).all();
}

/// Both records of an item, or of the volume's own folder.
void add(std::vector<Record>& catalog, std::uint32_t folder, std::uint32_t number, const std::u16string& name,
         mode_t mode, std::string record) {
    catalog.push_back({catalogKey(folder, name), std::move(record)});
    catalog.push_back({catalogKey(number, {}), threadOf(S_ISDIR(mode) ? 3 : 4, folder, name)});
}

std::vector<Record> attributesOf(const std::vector<Item>& items) {
    std::vector<Record> records;
    for (std::size_t at = 0; at < items.size(); ++at)
        for (const auto& [name, value] : items[at].attributes) {
            const std::u16string units = unitsOf(name);
            const auto length = static_cast<std::uint16_t>(12 + 2 * units.size());
            Bytes key;
            key.big(length).zeros(2).big(static_cast<std::uint32_t>(firstItem + at)).zeros(4).text(nameText(units));
            Bytes data;
            data.big(std::uint32_t{0x10}).zeros(8).big(static_cast<std::uint32_t>(value.size())).text(value).padTo(2);
            records.push_back({std::move(key).all(), std::move(data).all()});
        }
    return records;
}

/// Keys in bytes are in the order of the catalog, since it compares numbers and units; only the lengths of the key and
/// of the name must not count.
bool comesBefore(const Record& one, const Record& other) {
    const int folders = one.key.compare(2, 4, other.key, 2, 4);
    return folders != 0 ? folders < 0 : one.key.compare(8, std::string::npos, other.key, 8, std::string::npos) < 0;
}

}  // namespace

std::vector<Item> itemsOf(const fs::path& folder) {
    std::vector<Item> items;
    std::vector<std::size_t> folders = {top};
    TreeWalk walk(folder, {});
    if (walk.rootError() != 0) throw FileError("read the folder", folder, walk.rootError());
    while (walk.next()) {
        const fs::path path = folder / walk.relativePath();
        if (walk.event() == TreeWalk::Event::unreadable) throw FileError("read", path, walk.errorNumber());
        const struct stat* status = walk.status();
        if (status == nullptr) throw FileError("read", path, errno);
        folders.resize(static_cast<std::size_t>(walk.depth()) + 1);
        Item item{folders.back(), unitsOf(walk.name()), status->st_mode, status->st_mtime, {}};
        if (S_ISREG(status->st_mode))
            item.content = Files::read(path);
        else if (S_ISLNK(status->st_mode))
            item.content = Files::readLink(path).native();
        else if (!S_ISDIR(status->st_mode))
            throw Failure("Practice", EINVAL, "A disk image holds files, folders and links only: " + path.native());
        items.push_back(std::move(item));
        if (S_ISDIR(status->st_mode)) folders.push_back(items.size());
    }
    return items;
}

std::string bytes(const std::string& name, const std::vector<Item>& items) {
    std::vector<std::uint32_t> entries(items.size() + 1);
    std::time_t newest = 0;
    std::uint32_t folders = 0;
    for (const Item& item : items) {
        ++entries.at(item.folder);
        newest = std::max(newest, item.modified);
        folders += S_ISDIR(item.mode) ? 1 : 0;
    }
    const auto numberAt = [](std::size_t place) {
        return place == top ? rootFolder : static_cast<std::uint32_t>(firstItem + place - 1);
    };

    // Where the catalog lies depends on the size of the data, and the data is told of in the catalog: the data goes
    // first. In front of it lie two kilobytes of header and the map of blocks, for which there is one block each.
    std::size_t size = 0;
    for (const Item& item : items)
        size += (blocksOf(item.content.size()) + blocksOf(item.resourceFork.size())) * blockSize;
    const std::size_t forCatalog = 64 * blockSize + items.size() * 2048;
    const std::uint32_t mapBlocks = blocksOf((size + forCatalog) / blockSize / 8 + 1) + 1;
    Disk disk(1 + mapBlocks);
    std::vector<Record> catalog;
    const std::u16string volumeName = unitsOf(name);
    add(catalog, rootParent, rootFolder, volumeName, S_IFDIR, folderRecord(rootFolder, 040755, newest, entries[top]));
    for (std::size_t at = 0; at < items.size(); ++at) {
        const Item& item = items[at];
        const std::uint32_t number = numberAt(at + 1);
        std::string record = S_ISDIR(item.mode) ? folderRecord(number, item.mode, item.modified, entries[at + 1])
                                                : fileRecord(number, item, disk);
        add(catalog, numberAt(item.folder), number, item.name, item.mode, std::move(record));
    }
    std::stable_sort(catalog.begin(), catalog.end(), comesBefore);
    const std::string extents = disk.fork(CatalogTree::file({}, {4096, 10, 0}));
    const std::string catalogFork = disk.fork(CatalogTree::file(catalog, {8192, 516, 0xBC}));
    const std::string attributes = disk.fork(CatalogTree::file(attributesOf(items), {8192, 266, 0}));

    const std::uint32_t blocks = disk.next() + 1;
    std::string map(mapBlocks * blockSize, '\0');
    for (std::uint32_t at = 0; at < blocks; ++at)
        map[at / 8] = static_cast<char>(static_cast<unsigned char>(map[at / 8]) | (0x80U >> (at % 8)));
    Bytes header;
    header.text("HX").big(std::uint16_t{5}).big(std::uint32_t{0x100}).text("10.0").zeros(4);
    header.big(stamp(newest)).big(stamp(newest)).zeros(4).big(stamp(newest));
    header.big(static_cast<std::uint32_t>(items.size() - folders)).big(folders);
    header.big(static_cast<std::uint32_t>(blockSize)).big(blocks).big(std::uint32_t{0}).big(std::uint32_t{0});
    header.big(std::uint32_t{65536}).big(std::uint32_t{65536});
    header.big(static_cast<std::uint32_t>(firstItem + items.size())).big(std::uint32_t{1}).big(std::uint64_t{1});
    header.zeros(32);
    header.big(static_cast<std::uint64_t>(map.size())).big(std::uint32_t{0}).big(mapBlocks);
    header.big(std::uint32_t{1}).big(mapBlocks).zeros(56);
    header.text(extents).text(catalogFork).text(attributes).zeros(80);

    Bytes volume;
    volume.zeros(1024).text(header.all()).padTo(blockSize).text(map).text(disk.data());
    volume.zeros(blockSize - 1024).text(header.all()).padTo(blockSize);
    return std::move(volume).all();
}

std::u16string unitsOf(const std::string& text) {
    std::u16string units;
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at]);
        const std::size_t length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
        char32_t character = length == 1 ? first : first & (0x7FU >> length);
        bool isWhole = length > 0 && at + length <= text.size();
        for (std::size_t next = 1; isWhole && next < length; ++next) {
            const auto byte = static_cast<unsigned char>(text[at + next]);
            isWhole = (byte & 0xC0U) == 0x80;
            character = character << 6 | (byte & 0x3FU);
        }
        if (!isWhole) character = 0xFFFD;
        if (character == U':') character = U'/';  // The one of them is shown as the other.
        at += isWhole ? length : 1;
        if (character < 0x10000) {
            units += static_cast<char16_t>(character);
        } else {
            units += static_cast<char16_t>(0xD7C0 + (character >> 10));
            units += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
        }
    }
    return units;
}

}  // namespace tarvik::Practice::HFSVolume
