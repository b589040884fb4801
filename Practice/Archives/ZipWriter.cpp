#include "Practice/Archives/ZipWriter.h"

#include "Platform/Files/Files.h"

#include <utility>

namespace tarvik::Practice {

namespace {

/// The check sum of the format (CRC-32), bit by bit.
std::uint32_t checkSumOf(std::string_view bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

constexpr unsigned descriptorFlag = 1U << 3U;
/// 1 January 1980.
constexpr unsigned firstDate = 0x21;

unsigned flagsOf(const ZipWriter::Entry& entry) {
    return entry.flags | (entry.hasDescriptor ? descriptorFlag : 0U);
}

std::string sumAndSizes(const ZipWriter::Entry& entry, std::uint64_t size) {
    return lowFirst(checkSumOf(entry.content), 4) + lowFirst(entry.content.size(), 4) + lowFirst(size, 4);
}

std::string localOf(const ZipWriter::Entry& entry) {
    const std::string name = entry.localName.value_or(entry.name);
    std::string bytes("PK\3\4");
    bytes += lowFirst(20, 2) + lowFirst(flagsOf(entry), 2) + lowFirst(0, 2) + lowFirst(0, 2) + lowFirst(firstDate, 2);
    bytes += entry.hasDescriptor ? lowFirst(0, 12) : sumAndSizes(entry, entry.content.size());
    bytes += lowFirst(name.size(), 2) + lowFirst(entry.extra.size(), 2) + name + entry.extra + entry.content;
    if (entry.hasDescriptor) bytes += "PK\7\b" + sumAndSizes(entry, entry.content.size());
    return bytes;
}

std::string centralOf(const ZipWriter::Entry& entry, std::uint64_t offset) {
    std::string bytes("PK\1\2");
    bytes += lowFirst(entry.system << 8U | 20U, 2) + lowFirst(20, 2) + lowFirst(flagsOf(entry), 2);
    bytes += lowFirst(0, 2) + lowFirst(0, 2) + lowFirst(firstDate, 2);
    bytes += sumAndSizes(entry, entry.claimedSize.value_or(static_cast<std::uint32_t>(entry.content.size())));
    bytes += lowFirst(entry.name.size(), 2) + lowFirst(entry.extra.size(), 2) + lowFirst(0, 6);
    bytes += lowFirst(std::uint64_t{entry.mode} << 16U, 4) + lowFirst(offset, 4) + entry.name + entry.extra;
    return bytes;
}

}  // namespace

std::string lowFirst(std::uint64_t value, int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i, value >>= 8U) bytes += static_cast<char>(value & 0xFFU);
    return bytes;
}

ZipWriter& ZipWriter::add(Entry entry) {
    m_entries.push_back(std::move(entry));
    return *this;
}

ZipWriter& ZipWriter::addLink(const std::string& name, const std::string& target) {
    return add({.name = name, .content = target, .mode = 0120755});
}

ZipWriter& ZipWriter::addFolder(const std::string& name) {
    return add({.name = name, .mode = 040755});
}

std::string ZipWriter::bytesOfEntries() const {
    std::string bytes;
    for (const Entry& entry : m_entries) bytes += localOf(entry);
    return bytes;
}

std::string ZipWriter::bytes() const {
    std::string bytes;
    std::string directory;
    std::uint64_t count = 0;
    for (const Entry& entry : m_entries) {
        if (entry.isListed) {
            directory += centralOf(entry, bytes.size());
            ++count;
        }
        bytes += localOf(entry);
    }
    const std::size_t offset = bytes.size();
    bytes += directory + "PK\5\6" + lowFirst(0, 4) + lowFirst(count, 2) + lowFirst(count, 2);
    return bytes + lowFirst(directory.size(), 4) + lowFirst(offset, 4) + lowFirst(0, 2);
}

void ZipWriter::writeTo(const fs::path& file) const {
    Files::createFolder(file.parent_path());
    fs::remove(file);
    Files::createFile(file, bytes());
}

std::string ZipWriter::field(unsigned identifier, std::string_view content) {
    return lowFirst(identifier, 2) + lowFirst(content.size(), 2) + std::string(content);
}

}  // namespace tarvik::Practice
