#include "Platform/Bundles/BundleIcon.h"
#include "Platform/Bundles/IconFile.h"
#include "Support/Bundles.h"
#include "Support/IconFiles.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace tarvik::test {

namespace {

const std::string small = pngBeginning(32, 32);
const std::string middle = pngBeginning(128, 128);
const std::string large = pngBeginning(512, 512);

}  // namespace

TEST(IconFile, GivesTheSmallestPictureThatIsLargeEnough) {
    const std::string file = iconFile({{"icp5", small}, {"ic09", large}, {"ic07", middle}});
    EXPECT_EQ(IconFile::png(file, 16), small);
    EXPECT_EQ(IconFile::png(file, 32), small);
    EXPECT_EQ(IconFile::png(file, 33), middle);
    EXPECT_EQ(IconFile::png(file, 512), large);
    EXPECT_EQ(IconFile::png(file, 4000), large);
    EXPECT_EQ(IconFile::png(file, -1), small);
}

TEST(IconFile, GoesByWhatAPictureIsAndNotByItsType) {
    EXPECT_EQ(IconFile::png(iconFile({{"ic10", small}, {"icp4", middle}}), 100), middle);
}

TEST(IconFile, PassesOverWhatIsNoPngPicture) {
    const std::string jpeg = "\xff\x4f\xff\x51" + std::string(40, 'x');
    EXPECT_EQ(IconFile::png(iconFile({{"TOC ", "ic08"}, {"ic08", jpeg}, {"ic07", middle}, {"name", large}}), 256),
              middle);
    EXPECT_EQ(IconFile::png(iconFile({{"ic08", jpeg}, {"il32", std::string(100, '\0')}}), 32), std::nullopt);
    EXPECT_EQ(IconFile::png(iconFile({}), 32), std::nullopt);
    EXPECT_EQ(IconFile::png("", 32), std::nullopt);
    EXPECT_EQ(IconFile::png("icns", 32), std::nullopt);
    EXPECT_EQ(IconFile::png(small, 32), std::nullopt);
}

TEST(IconFile, PassesOverPicturesThatClaimToBeEmptyOrEndlesslyLarge) {
    for (const auto& picture : {pngBeginning(0, 32), pngBeginning(32, 0), pngBeginning(100'000, 32),
                                pngBeginning(32, 0xFFFFFFFF), pngBeginning(32, 32).substr(0, 23)})
        EXPECT_EQ(IconFile::png(iconFile({{"ic07", picture}, {"name", "what follows"}}), 32), std::nullopt);
}

TEST(IconFile, EndsAtAnEntryThatLeadsOutOfTheFile) {
    const std::string good = iconFile({{"icp5", small}});
    for (const std::uint32_t length : {0U, 7U, 41U, 0x7FFFFFFFU, 0xFFFFFFFFU})
        EXPECT_EQ(IconFile::png(good + "ic07" + fourBytes(length) + middle.substr(0, 10), 128), small) << length;
    EXPECT_EQ(IconFile::png(good + "ic0", 128), small);
}

TEST(IconFile, ReadsNothingBesideTheBytesWhereverTheyEnd) {
    const std::string file = iconFile({{"icp5", small}, {"ic07", middle}});
    for (std::size_t size = 0; size < file.size(); ++size) {
        // A copy of exactly this size, so that a sanitizer sees what reads on.
        const std::vector<char> cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        const auto png = IconFile::png({cut.data(), cut.size()}, 128);
        if (size >= 8 + 8 + small.size()) {
            EXPECT_EQ(png, small) << size;
        } else {
            EXPECT_EQ(png, std::nullopt) << size;
        }
    }
}

TEST(BundleIcon, IsTheOneThatTheBundleNames) {
    const TemporaryFolder folder;
    makeFile(folder / "Editor.app/Contents/Resources/Editor.icns", iconFile({{"ic07", middle}}));
    makeBundle(folder / "Editor.app", {{"CFBundleIconFile", "Editor"}});
    EXPECT_EQ(BundleIcon::png(folder / "Editor.app", 64), middle);
    makeBundle(folder / "Editor.app", {{"CFBundleIconFile", "Editor.icns"}});
    EXPECT_EQ(BundleIcon::png(folder / "Editor.app", 64), middle);
}

TEST(BundleIcon, IsNoneWhereThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(BundleIcon::png(folder / "Gone.app", 64), std::nullopt);
    makeBundle(folder / "Plain.app");
    EXPECT_EQ(BundleIcon::png(folder / "Plain.app", 64), std::nullopt);
    makeBundle(folder / "Lost.app", {{"CFBundleIconFile", "Lost"}});
    EXPECT_EQ(BundleIcon::png(folder / "Lost.app", 64), std::nullopt);
    makeFile(folder / "Broken.app/Contents/Resources/Broken.icns", "no icon");
    makeBundle(folder / "Broken.app", {{"CFBundleIconFile", "Broken"}});
    EXPECT_EQ(BundleIcon::png(folder / "Broken.app", 64), std::nullopt);
    makeFolder(folder / "Pipe.app/Contents/Resources");
    makePipe(folder / "Pipe.app/Contents/Resources/Pipe.icns");
    makeBundle(folder / "Pipe.app", {{"CFBundleIconFile", "Pipe"}});
    EXPECT_EQ(BundleIcon::png(folder / "Pipe.app", 64), std::nullopt);
}

TEST(BundleIcon, LiesInTheBundleWhateverItIsCalled) {
    const TemporaryFolder folder;
    makeFile(folder / "Other.icns", iconFile({{"ic07", middle}}));
    makeFolder(folder / "Editor.app/Contents/Resources");
    for (const auto& name : {std::string("../../../Other.icns"), (folder / "Other.icns").native(), std::string("..")}) {
        makeBundle(folder / "Editor.app", {{"CFBundleIconFile", name}});
        EXPECT_EQ(BundleIcon::png(folder / "Editor.app", 64), std::nullopt) << name;
    }
}

}  // namespace tarvik::test
