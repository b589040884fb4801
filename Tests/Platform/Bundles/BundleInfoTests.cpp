#include "Platform/Bundles/BundleIdentifierReader.h"
#include "Platform/Bundles/BundleInfoPlistReader.h"
#include "Platform/Text/PropertyList.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using Info = BundleInfoPlistReader::Info;
using test::World;

/// A bundle whose property list has these bytes.
fs::path bundleWith(const World& world, const std::string& bytes) {
    const fs::path bundle = world.folder / "Applications/Editor.app";
    test::makeFile(bundle / "Contents/Info.plist", bytes);
    return bundle;
}

fs::path bundleWith(const World& world, PropertyList::Dictionary values) {
    return bundleWith(world, PropertyList(std::move(values)).xml());
}

TEST(BundleInfoPlistReader, GivesTheIdentifierAndTheVersion) {
    const World world;
    const PropertyList list(PropertyList::Dictionary{{"CFBundleIdentifier", "org.example.Editor"},
                                                     {"CFBundleShortVersionString", "2.1"},
                                                     {"CFBundleVersion", "2100"}});
    for (const auto& bytes : {list.xml(), list.binary()})
        EXPECT_EQ(BundleInfoPlistReader::read(world.host, bundleWith(world, bytes)),
                  (Info{"org.example.Editor", "2.1"}));
}

TEST(BundleInfoPlistReader, TheNumberOfTheBuildServesWithoutAVersion) {
    const World world;
    EXPECT_EQ(BundleInfoPlistReader::read(world.host, bundleWith(world, {{"CFBundleVersion", "2100"}})),
              (Info{std::nullopt, "2100"}));
    EXPECT_EQ(BundleInfoPlistReader::read(
                  world.host, bundleWith(world, {{"CFBundleShortVersionString", 2}, {"CFBundleVersion", "2100"}})),
              (Info{std::nullopt, "2100"}));
    EXPECT_EQ(BundleInfoPlistReader::read(
                  world.host, bundleWith(world, {{"CFBundleShortVersionString", ""}, {"CFBundleVersion", "2100"}})),
              (Info{std::nullopt, ""}));
}

TEST(BundleInfoPlistReader, ADictionaryThatSaysNothingIsStillOne) {
    const World world;
    EXPECT_EQ(BundleInfoPlistReader::read(world.host, bundleWith(world, PropertyList::Dictionary{})), Info{});
    EXPECT_EQ(BundleInfoPlistReader::read(world.host,
                                          bundleWith(world, {{"CFBundleIdentifier", 7}, {"CFBundleVersion", true}})),
              Info{});
}

TEST(BundleInfoPlistReader, GivesNothingWithoutADictionary) {
    const World world;
    EXPECT_EQ(BundleInfoPlistReader::read(world.host, world.folder / "Missing.app"), std::nullopt);
    for (const std::string& bytes : {std::string(), std::string("not a list"), PropertyList("text").xml(),
                                     PropertyList(PropertyList::List{}).binary()}) {
        const fs::path bundle = bundleWith(world, bytes);
        EXPECT_EQ(BundleInfoPlistReader::read(world.host, bundle), std::nullopt) << bytes;
        EXPECT_EQ(BundleIdentifierReader::read(world.host, bundle), std::nullopt) << bytes;
    }
}

TEST(BundleIdentifierReader, GivesTheIdentifierAlone) {
    const World world;
    const auto idOf = [&](PropertyList::Dictionary values) {
        return BundleIdentifierReader::read(world.host, bundleWith(world, std::move(values)));
    };
    EXPECT_EQ(idOf({{"CFBundleIdentifier", "org.example.Editor"}}), "org.example.Editor");
    EXPECT_EQ(idOf({{"CFBundleIdentifier", true}}), std::nullopt);
    EXPECT_EQ(idOf({{"CFBundleName", "Editor"}}), std::nullopt);
    EXPECT_EQ(BundleIdentifierReader::read(world.host, world.folder / "Missing.app"), std::nullopt);
}

}  // namespace
}  // namespace tarvik
