#include "Practice/DiskImages/DiskImage.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Practice/DiskImages/Bytes.h"
#include "Practice/DiskImages/HFSVolume.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>
#include <zlib.h>

namespace tarvik::Practice::DiskImage {

namespace {

using PartitionTable::sectorSize;
using PartitionTable::Stretch;

constexpr std::size_t pieceSize = 512 * sectorSize;
constexpr std::uint32_t checksumKind = 2;  // CRC-32

std::uint32_t sumOf(const std::string& bytes, std::uint32_t before = 0) {
    return static_cast<std::uint32_t>(
        crc32_z(before, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

Bytes& checksum(Bytes& bytes, std::uint32_t sum) {
    return bytes.big(checksumKind).big(std::uint32_t{32}).big(sum).zeros(124);
}

/// Where the pieces of one stretch lie; they are put behind `data`.
std::string pieces(const Stretch& stretch, std::uint64_t firstSector, std::uint32_t number, const Packing& packing,
                   Bytes& data) {
    constexpr std::uint32_t zeros = 0;
    constexpr std::uint32_t stored = 1;
    constexpr std::uint32_t end = 0xFFFFFFFF;
    Bytes list;
    std::uint32_t count = 0;
    const auto tell = [&](std::uint32_t kind, std::size_t from, std::size_t size, std::size_t packedSize) {
        list.big(kind).zeros(4).big(std::uint64_t{from / sectorSize}).big(std::uint64_t{size / sectorSize});
        list.big(std::uint64_t{data.size()}).big(std::uint64_t{packedSize});
        ++count;
    };
    for (std::size_t at = 0; at < stretch.bytes.size(); at += pieceSize) {
        const std::string piece = stretch.bytes.substr(at, pieceSize);
        if (piece.find_first_not_of('\0') == std::string::npos) {
            tell(zeros, at, piece.size(), 0);
            continue;
        }
        const std::string packed = packing.packed(piece);
        const bool isPacked = packed.size() < piece.size();
        const std::string& kept = isPacked ? packed : piece;
        tell(isPacked ? packing.number : stored, at, piece.size(), kept.size());
        data.text(kept);
    }
    tell(end, stretch.bytes.size(), 0, 0);

    Bytes table;
    table.text("mish").big(std::uint32_t{1}).big(firstSector).big(std::uint64_t{stretch.bytes.size() / sectorSize});
    table.zeros(8).big(static_cast<std::uint32_t>(pieceSize / sectorSize + 8)).big(number).zeros(24);
    checksum(table, sumOf(stretch.bytes)).big(count).text(list.all());
    return std::move(table).all();
}

}  // namespace

Packing zlib() {
    return {0x80000005, [](const std::string& piece) {
                std::string packed(compressBound(piece.size()), '\0');
                uLongf size = packed.size();
                if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                              reinterpret_cast<const Bytef*>(piece.data()), piece.size(), 9) != Z_OK)
                    throw Failure("Practice", ENOMEM, "There is not enough memory to pack a disk image.");
                packed.resize(size);
                return packed;
            }};
}

Packing none() {
    return {1, [](const std::string& piece) { return piece; }};
}

void create(const fs::path& image, const std::vector<Volume>& volumes) {
    std::vector<std::string> contents;
    contents.reserve(volumes.size());
    for (const Volume& volume : volumes)
        contents.push_back(HFSVolume::bytes(volume.name, HFSVolume::itemsOf(volume.tree)));
    write(image, PartitionTable::around(contents), zlib());
}

void write(const fs::path& image, const std::vector<Stretch>& stretches, const Packing& packing) {
    Bytes file;
    PropertyList::List tables;
    std::uint64_t sectors = 0;
    std::string sums;
    for (const Stretch& stretch : stretches) {
        const auto number = static_cast<int>(tables.size());
        const std::string table = pieces(stretch, sectors, static_cast<std::uint32_t>(number), packing, file);
        sectors += stretch.bytes.size() / sectorSize;
        sums += Bytes().big(sumOf(stretch.bytes)).all();
        tables.push_back(PropertyList::Dictionary{{"Attributes", "0x0050"},
                                                  {"CFName", stretch.name},
                                                  {"Data", PropertyList::Data{table}},
                                                  {"ID", std::to_string(number)},
                                                  {"Name", stretch.name}});
    }
    const std::uint64_t dataSize = file.size();
    const std::uint32_t dataSum = sumOf(file.all());
    const PropertyList list(PropertyList::Dictionary{
        {"resource-fork", PropertyList(PropertyList::Dictionary{{"blkx", PropertyList(std::move(tables))}})}});
    const std::string text = list.xml();

    Bytes trailer;
    trailer.text("koly").big(std::uint32_t{4}).big(std::uint32_t{512}).big(std::uint32_t{1});
    trailer.zeros(16).big(dataSize).zeros(16).big(std::uint32_t{1}).big(std::uint32_t{1}).text("Tarvik disk imag");
    checksum(trailer, dataSum).big(dataSize).big(std::uint64_t{text.size()}).zeros(120);
    checksum(trailer, sumOf(sums)).big(std::uint32_t{1}).big(sectors).zeros(12);
    file.text(text).text(trailer.all());
    Files::createFile(image, file.all());
}

}  // namespace tarvik::Practice::DiskImage
