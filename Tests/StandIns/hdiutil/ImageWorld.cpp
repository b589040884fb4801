#include "StandIns/hdiutil/ImageWorld.h"

#include "Practice/DiskImages/Bytes.h"
#include "StandIns/StandInRun.h"
#include "Support/Tree.h"

#include <algorithm>
#include <bzlib.h>
#include <stdexcept>
#include <sys/stat.h>
#include <utility>

namespace tarvik::test {

using Practice::Bytes;
using Practice::DiskImage::Packing;
using Practice::HFSVolume::Item;

namespace {

Bytes& runIn(Bytes& bytes, std::size_t length) {
    bytes.text(std::string_view("\0\1", 2));  // Three bytes from one byte before.
    for (length -= 3; length >= 16; length -= std::min<std::size_t>(length, 271))
        bytes.text("\xF0").big(static_cast<std::uint8_t>(std::min<std::size_t>(length, 271) - 16));
    return length > 0 ? bytes.big(static_cast<std::uint8_t>(0xF0 + length)) : bytes;
}

void literalsIn(Bytes& bytes, std::string_view literals) {
    while (!literals.empty()) {
        const std::size_t length = std::min<std::size_t>(literals.size(), 15);
        bytes.big(static_cast<std::uint8_t>(0xE0 + length)).text(literals.substr(0, length));
        literals.remove_prefix(length);
    }
}

}  // namespace

ImageWorld::ImageWorld() {
    makeFolder(volumes);
    makeFile(tree / "Editor.app/Contents/MacOS/Editor", "#!/bin/sh\n");
    fs::permissions(tree / "Editor.app/Contents/MacOS/Editor", fs::perms(0755));
    makeFileOfSize(tree / "Editor.app/Contents/Resources/Large", 700'000);
    makeFile(tree / "Editor.app/Contents/Resources/Zeros", std::string(600'000, '\0'));
    makeFile(tree / "Read Me.txt", "");
    makeLink(tree / "Applications", "/Applications");
    makeLink(tree / "Editor.app/Contents/Up", "../../Read Me.txt");
}

CommandResult ImageWorld::attach(const fs::path& image) const {
    return runStandIn("hdiutil", {"attach", image.native(), "-plist", "-nobrowse", "-readonly"});
}

CommandResult ImageWorld::detach(const std::string& target) const {
    return runStandIn("hdiutil", {"detach", target, "-quiet"});
}

std::vector<std::string> ImageWorld::attached(const fs::path& image, const std::string& key) const {
    const auto result = attach(image);
    EXPECT_EQ(result.status, 0) << result.stderr;
    EXPECT_EQ(result.stderr, "");
    const auto list = PropertyList::parsed(result.stdout);
    const PropertyList* entities = list ? list->find("system-entities") : nullptr;
    const auto* all = entities ? entities->as<PropertyList::List>() : nullptr;
    std::vector<std::string> values;
    if (all == nullptr) {
        ADD_FAILURE() << result.stdout;
        return values;
    }
    for (const PropertyList& entity : *all)
        if (const auto value = entity.text(key)) values.push_back(*value);
    return values;
}

void ImageWorld::expectRefusal(const fs::path& image, const std::string& words) const {
    const auto result = attach(image);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.stderr, "hdiutil: attach failed - " + words + "\n");
    EXPECT_EQ(result.stdout, "");
    expectNothingAttached();
}

void ImageWorld::expectNothingAttached() const {
    EXPECT_TRUE(fs::is_empty(volumes)) << pictureOf(volumes);
}

fs::path ImageWorld::imageOf(const std::vector<Item>& items, const std::string& name) const {
    fs::path image = folder / "made.dmg";
    fs::remove(image);
    Practice::DiskImage::write(image, Practice::PartitionTable::around({Practice::HFSVolume::bytes(name, items)}),
                               Practice::DiskImage::zlib());
    return image;
}

fs::path ImageWorld::imageOfTree(const Packing& packing) const {
    fs::path image = folder / "tree.dmg";
    fs::remove(image);
    const std::string volume = Practice::HFSVolume::bytes("Editor", Practice::HFSVolume::itemsOf(tree));
    Practice::DiskImage::write(image, Practice::PartitionTable::around({volume}), packing);
    return image;
}

std::string contentsOf(const fs::path& tree) {
    std::string picture = pictureOf(tree);
    const std::size_t top = picture.find(" .\n");
    if (top == std::string::npos) return picture;
    const std::size_t begin = picture.rfind('\n', top) + 1;
    return picture.erase(begin, top + 3 - begin);
}

Item itemAt(std::size_t folder, const std::u16string& name, mode_t mode, const std::string& content) {
    return {folder, name, mode, 1'700'000'000, content};
}

Packing bzip2() {
    return {0x80000006, [](const std::string& piece) {
                std::string packed(piece.size() * 2 + 1000, '\0');
                auto size = static_cast<unsigned>(packed.size());
                if (BZ2_bzBuffToBuffCompress(packed.data(), &size, const_cast<char*>(piece.data()),
                                             static_cast<unsigned>(piece.size()), 9, 0, 0) != BZ_OK)
                    throw std::runtime_error("bzip2");
                packed.resize(size);
                return packed;
            }};
}

Packing lzfse() {
    return {0x80000007, [](const std::string& piece) {
                Bytes packed;
                std::size_t from = 0;
                for (std::size_t at = 0; at < piece.size();) {
                    std::size_t end = piece.find_first_not_of(piece[at], at);
                    end = std::min(end, piece.size());
                    if (end - at < 8) {
                        at = end;
                        continue;
                    }
                    literalsIn(packed, std::string_view(piece).substr(from, at + 1 - from));
                    runIn(packed, end - at - 1);
                    from = at = end;
                }
                literalsIn(packed, std::string_view(piece).substr(from));
                packed.text("\x06").zeros(7);
                Bytes bytes;
                bytes.text("bvxn").little(static_cast<std::uint32_t>(piece.size()));
                bytes.little(static_cast<std::uint32_t>(packed.size())).text(packed.all()).text("bvx$");
                return std::move(bytes).all();
            }};
}

}  // namespace tarvik::test
