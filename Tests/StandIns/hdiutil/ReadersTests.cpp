#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Practice/DiskImages/Bytes.h"
#include "StandIns/hdiutil/ImageWorld.h"
#include "Support/Mutator.h"
#include "Support/Tree.h"
#include "hdiutil/Attachment.h"
#include "hdiutil/CompressedImage.h"
#include "hdiutil/Disk.h"
#include "hdiutil/ListingParser.h"
#include "hdiutil/TarList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarvik::test {
namespace {

using namespace tarvik::hdiutil;
using Practice::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

DiskReader::Read readerOf(const std::string& disk) {
    return [&disk](std::uint64_t offset, std::size_t count) {
        return offset < disk.size() ? disk.substr(static_cast<std::size_t>(offset), count) : std::string();
    };
}

/// A disk with Apple's partition table: its own place, and two volumes.
std::string appleDisk(std::uint16_t block) {
    const auto partition = [&](std::uint32_t first, std::uint32_t count, const std::string& type) {
        return Bytes()
            .text("PM")
            .zeros(2)
            .big(std::uint32_t{3})
            .big(first)
            .big(count)
            .zeros(32)
            .text(type)
            .padTo(block)
            .all();
    };
    Bytes disk;
    disk.text("ER").big(block).padTo(block);
    disk.text(partition(1, 3, "Apple_partition_map"))
        .text(partition(8, 4, "Apple_HFS"))
        .text(partition(12, 400, "Apple_HFS"));
    return disk.zeros(std::size_t{16} * block).all();
}

const std::string listing = R"(
7-Zip (z) 26.02

Listing archive: one.dmg

--
Path = one.dmg
Type = Dmg
Comment = 
{
volume_name: Own Name
}
----
Path = 4.hfs
--
Path = 4.hfs
Type = HFS

----------
Path = One
Folder = +
Size = 
Modified = 2026-11-22 20:40:04.5
Mode = drwxr-xr-x
Alternate Stream = -

Path = One/a = b
Folder = -
Size = 12
Modified = 1969-12-31 23:59:59
Mode = -rwsr-x--T
Alternate Stream = -

Path = One/a = b:com.apple.x
Folder = -
Size = 3
Mode = 
Alternate Stream = +

Path = One/link
Size = 4
Mode = lrwxr-xr-x

Path = One/pipe
Size = 0
Mode = prwxr-xr-x


Warnings: 1
)";

struct Parsed {
    std::vector<Entry> entries;
    std::vector<std::string> types;
    std::string volumeName;
};

Parsed parsed(const std::string& text, std::size_t pieceSize) {
    Parsed result;
    ListingParser parser([&](const Entry& entry) { result.entries.push_back(entry); });
    for (std::size_t at = 0; at < text.size(); at += pieceSize)
        parser.take(std::string_view(text).substr(at, pieceSize));
    parser.end();
    result.types = parser.types();
    result.volumeName = parser.volumeName();
    return result;
}

TEST(HdiutilListing, IsReadInPiecesOfAnySize) {
    using Type = Entry::Type;
    const Parsed whole = parsed(listing, listing.size());
    EXPECT_THAT(whole.types, ElementsAre("Dmg", "HFS"));
    EXPECT_EQ(whole.volumeName, "Own Name");
    EXPECT_THAT(whole.entries, ElementsAre(Entry{Type::folder, "One", "", 0, 0755, {1'795'380'004, 500'000'000}, ""},
                                           Entry{Type::file, "One/a = b", "", 12, 0750, {-1, 0}, ""},
                                           Entry{Type::attribute, "One/a = b", "com.apple.x", 3, 0644, {}, ""},
                                           Entry{Type::link, "One/link", "", 4, 0755, {}, ""},
                                           Entry{Type::other, "One/pipe", "", 0, 0755, {}, ""}));
    for (const std::size_t size : {1U, 2U, 7U, 100U}) EXPECT_EQ(parsed(listing, size).entries, whole.entries) << size;
}

TEST(HdiutilDisk, ReadsApplesTable) {
    for (const std::uint16_t block : {std::uint16_t{512}, std::uint16_t{2048}}) {
        const std::string disk = appleDisk(block);
        const Disk layout = DiskReader::layout(readerOf(disk), disk.size());
        EXPECT_EQ(layout.scheme, "Apple_partition_scheme");
        ASSERT_EQ(layout.slices.size(), 3U) << block;
        EXPECT_EQ(layout.slices[1],
                  (Slice{"Apple_HFS", "Apple_HFS", 2, std::uint64_t{8} * block, std::uint64_t{4} * block}));
        EXPECT_EQ(layout.slices[2].offset + layout.slices[2].size, disk.size()) << "cut off at the end of the disk";
    }
}

TEST(HdiutilDisk, ReadsAUniqueTableAndABootRecord) {
    std::string disk;
    for (const auto& stretch : Practice::PartitionTable::around({std::string(8192, 'v')})) disk += stretch.bytes;
    const Disk layout = DiskReader::layout(readerOf(disk), disk.size());
    EXPECT_EQ(layout.scheme, "GUID_partition_scheme");
    EXPECT_THAT(layout.slices, ElementsAre(Slice{"Apple_HFS", "48465300-0000-11AA-AA11-00306543ECAC", 1, 20480, 8192}));

    const std::string record = Bytes()
                                   .zeros(446)
                                   .text(std::string_view("\0\0\0\0\xAF\0\0\0", 8))
                                   .little(std::uint32_t{4})
                                   .little(std::uint32_t{8})
                                   .zeros(48)
                                   .text("\x55\xAA")
                                   .zeros(8192)
                                   .all();
    EXPECT_EQ(DiskReader::layout(readerOf(record), record.size()),
              (Disk{"FDisk_partition_scheme", {{"Apple_HFS", "0xAF", 1, 2048, 4096}}}));
    EXPECT_EQ(DiskReader::layout(readerOf("text"), 4), Disk());
}

TEST(HdiutilDisk, KnowsWhatAStretchIsCalled) {
    EXPECT_EQ(DiskReader::contentOfName("disk image (Apple_HFS : 4)"), "Apple_HFS");
    EXPECT_EQ(DiskReader::contentOfName("a (b) (Apple_APFS : 12)"), "Apple_APFS");
    EXPECT_EQ(DiskReader::contentOfName("plain"), "");
    EXPECT_EQ(DiskReader::contentOfName(" : ("), "");
}

TEST(HdiutilReaders, TakeAnyBytes) {
    constexpr unsigned rounds = 8'000;
    const std::string good = appleDisk(512);
    std::string unique;
    for (const auto& stretch : Practice::PartitionTable::around({std::string(8192, 'v')})) unique += stretch.bytes;
    unsigned slices = 0;
    unsigned entries = 0;
    for (unsigned round = 0; round < rounds; ++round) {
        Mutator disks(round, {"PM", "ER", "EFI PART", "\x55\xAA", "H+", "NXSB"});
        const std::string disk = disks.mutated(round % 2 == 0 ? good : unique);
        for (const Slice& slice : DiskReader::layout(readerOf(disk), disk.size()).slices) {
            ASSERT_LE(slice.offset, disk.size());
            ASSERT_LE(slice.size, disk.size() - slice.offset);
            DiskReader::formatAt(readerOf(disk), slice.offset);
            ++slices;
        }
        Mutator texts(round,
                      {"\nPath = ", "----------\n", "Size = 99999999999999999999", "Mode = ", " = ", ":", "\n\n"});
        const std::string text = texts.mutated(listing);
        for (const Entry& entry : parsed(text, 1 + round % 50).entries) {
            ASSERT_GE(entry.size, 0);
            ASSERT_EQ(entry.permissions & ~0777U, 0U);
            ++entries;
        }
        TarList list;
        list.take(texts.mutated("-rw-r--r--  0 root root  300000 Nov 22 20:40 big\n"));
        ASSERT_GE(list.neededBytes(), 0);
        DiskReader::contentOfName(text);
    }
    std::printf("tried %u disks, %u lists, %u lines: %u slices and %u entries found\n", rounds, rounds, rounds, slices,
                entries);
    EXPECT_GT(slices, rounds / 2);
    EXPECT_GT(entries, rounds);
}

class HdiutilRecords : public ImageWorld {};

TEST_F(HdiutilRecords, TakeAnyBytes) {
    constexpr unsigned rounds = 2'000;
    const std::string good = contentOf(imageOf({itemAt(0, u"file", 0100644, "x")}));
    const Attachment attachment{"/image.dmg", "1:2:3", {{"/dev/disk4", "a", "b", "hfs", "/Volumes/x", 7}}};
    const std::string record = AttachmentRecord::kept(attachment).xml();
    EXPECT_EQ(AttachmentRecord::read(*PropertyList::parsed(record)), attachment);
    const fs::path path = folder / "broken.dmg";
    unsigned images = 0;
    unsigned passed = 0;
    for (unsigned round = 0; round < rounds; ++round) {
        Mutator mutator(round, {"koly", "<key>LPic</key>", "<array>", "encrcdsa", "mish"});
        std::string broken = good;  // The trailer and the list, which are read here, get their share.
        const std::size_t tail = broken.size() - (round % 2 == 0 ? 512 : 6000);
        broken = broken.substr(0, tail) + mutator.mutated(broken.substr(tail));
        makeFile(path, broken);
        const ImageFile image(path);
        if (CompressedImage::isOne(image)) ++images;
        CompressedImage::isEncrypted(image);
        try {
            CompressedImage::check(image);
            ++passed;
        } catch (const Failure& failure) {
            EXPECT_FALSE(failure.description().empty());
        }
        if (const auto list = PropertyList::parsed(mutator.mutated(record))) AttachmentRecord::read(*list);
    }
    std::printf("tried %u images (%u with a trailer, %u whole) and %u records\n", rounds, images, passed, rounds);
    EXPECT_GT(images, rounds / 10);
}

TEST_F(HdiutilRecords, OfBrokenImagesLeaveNothing) {
    constexpr unsigned rounds = 60;
    const std::string good = Practice::HFSVolume::bytes("Editor", Practice::HFSVolume::itemsOf(tree));
    const fs::path path = folder / "broken.dmg";
    unsigned attachedOnes = 0;
    for (unsigned round = 0; round < rounds; ++round) {
        // Where the header, the map and the catalog lie: in the content no change is a fault.
        Mutator mutator(round, {"H+", "..", "/", std::string(8, '\xFF')});
        const std::size_t place = round % 3 == 0 ? 0 : good.size() - 40'000;
        const std::size_t length = round % 3 == 0 ? 2048 : 36'000;
        std::string broken = mutator.mutated(good.substr(place, length));
        broken.resize(length);
        makeFile(path, std::string(good).replace(place, length, broken));
        const auto result = attach(path);
        ASSERT_TRUE(result.status == 0 || result.status == 1) << round;
        if (result.status == 0) {
            ++attachedOnes;
            ASSERT_EQ(detach("disk4").status, 0) << round;
        }
        expectNothingAttached();
        ASSERT_THAT(Files::names(machine), ElementsAre("Volumes")) << round;
    }
    std::printf("attached %u of %u broken images\n", attachedOnes, rounds);
}

}  // namespace
}  // namespace tarvik::test
