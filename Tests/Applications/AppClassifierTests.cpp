#include "Applications/AppClassifier.h"
#include "Applications/AppFlags.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using test::makeFile;
using test::makeFolder;
using test::makeLink;

const PropertyList noPlist;
constexpr const char* targetFile = "Contents/Resources/ExternalAppTarget.txt";
constexpr const char* receipt = "Contents/_MASReceipt/receipt";

PropertyList plist(const std::string& key, PropertyList value) {
    return PropertyList::Dictionary{{key, std::move(value)}};
}

class AppClassification : public testing::Test {
protected:
    AppClassifier::Classification classified(const fs::path& path, const PropertyList& list = noPlist) const {
        return AppClassifier::classify(world.host, path, list, false, std::nullopt);
    }
    AppRecordKind kindOf(const fs::path& path) const { return classified(path).kind; }

    test::World world;
    const fs::path applications = world.host.root / "Applications";
    const fs::path bundle = applications / "Foo.app";
};

TEST_F(AppClassification, CallsAllUnderTheSystemsFolderRisky) {
    const fs::path risky = world.host.root / "System/Applications/Foo.app";
    makeFile(risky / targetFile, "/elsewhere");
    EXPECT_EQ(classified(risky), AppClassifier::Classification{.kind = AppRecordKind::systemRisky});
    EXPECT_EQ(AppClassifier::classify(world.host, risky, noPlist, true, "/Volumes/T/Foo.app"),
              AppClassifier::Classification{.kind = AppRecordKind::systemRisky});
    EXPECT_EQ(kindOf(world.host.root / "Systems/Foo.app"), AppRecordKind::normal);
    EXPECT_EQ(kindOf(world.host.root / "Applications/System/Foo.app"), AppRecordKind::normal);
}

TEST_F(AppClassification, CallsALinkALinkWhateverItLeadsTo) {
    const fs::path target = "/Volumes/T/ExternalTarvik/Apps/Foo.app";
    makeFile(bundle / targetFile, "/elsewhere");
    const AppClassifier::Classification link = {.kind = AppRecordKind::symlink, .externalTargetPath = target};
    EXPECT_EQ(AppClassifier::classify(world.host, bundle, noPlist, true, target), link);
    EXPECT_EQ(AppClassifier::classify(world.host, world.home / "Applications/Foo.app", noPlist, true, target), link);
    EXPECT_EQ(AppClassifier::classify(world.host, bundle, noPlist, true, std::nullopt),
              AppClassifier::Classification{.kind = AppRecordKind::symlink});
}

TEST_F(AppClassification, KnowsALauncherByItsTargetFileAlone) {
    makeFile(bundle / targetFile, " \n/Volumes/T/ExternalTarvik/Apps/Foo.app\n\n");
    makeFile(bundle / receipt);
    EXPECT_EQ(classified(bundle),
              (AppClassifier::Classification{.kind = AppRecordKind::tarvikLauncher,
                                             .isTarvikLauncher = true,
                                             .externalTargetPath = "/Volumes/T/ExternalTarvik/Apps/Foo.app"}));
}

TEST_F(AppClassification, KnowsALauncherByItsPlistAlone) {
    const AppClassifier::Classification launcher = {.kind = AppRecordKind::tarvikLauncher, .isTarvikLauncher = true};
    const AppClassifier::Classification normal;
    EXPECT_EQ(classified(bundle, plist("CFBundleIdentifier", "com.acme.foo.externallauncher")), launcher);
    EXPECT_EQ(classified(bundle, plist("CFBundleExecutable", "ExternalAppLauncher")), launcher);
    EXPECT_EQ(classified(bundle, plist("CFBundleIdentifier", "com.acme.externallauncher.foo")), normal);
    EXPECT_EQ(classified(bundle, plist("CFBundleIdentifier", 5)), normal);
    EXPECT_EQ(classified(bundle, plist("CFBundleExecutable", "ExternalAppLauncher2")), normal);
    EXPECT_EQ(classified(bundle, plist("CFBundleExecutable", "externalapplauncher")), normal);
    EXPECT_EQ(classified(bundle, PropertyList("ExternalAppLauncher")), normal);
}

TEST_F(AppClassification, TellsWhereABundleStands) {
    EXPECT_EQ(kindOf(world.drive / "ExternalTarvik/Apps/Foo.app"), AppRecordKind::externalTarget);
    EXPECT_EQ(kindOf(world.home / "Applications/ExternalTarvik/Foo.app"), AppRecordKind::externalTarget);
    EXPECT_EQ(kindOf(world.drive / "ExternalTarvik.app"), AppRecordKind::normal);
    EXPECT_EQ(kindOf(world.drive / "MyExternalTarvik/Foo.app"), AppRecordKind::normal);
    EXPECT_EQ(kindOf(world.home / "Applications/Foo.app"), AppRecordKind::userApplications);
    EXPECT_EQ(kindOf(world.home / "Applications (old)/Foo.app"), AppRecordKind::userApplications);
    EXPECT_EQ(kindOf(world.home / "Desktop/Foo.app"), AppRecordKind::normal);
    EXPECT_EQ(kindOf(bundle), AppRecordKind::normal);
}

TEST_F(AppClassification, TellsTheStoreLast) {
    makeFile(bundle / receipt);
    makeFile(world.home / "Applications/Bar.app" / receipt);
    EXPECT_EQ(kindOf(bundle), AppRecordKind::macAppStore);
    EXPECT_EQ(kindOf(world.home / "Applications/Bar.app"), AppRecordKind::userApplications);
}

TEST_F(AppClassification, ReadsATargetAsItIsStored) {
    const auto target = [&](std::string_view content) {
        makeFile(bundle / targetFile, content);
        return AppClassifier::readLauncherTarget(bundle);
    };
    EXPECT_EQ(AppClassifier::readLauncherTarget(bundle), std::nullopt);
    EXPECT_EQ(target("\t /Two Words.app \r\n"), "/Two Words.app");
    EXPECT_EQ(target(" \n"), "");
    EXPECT_EQ(target("/caf\xE9.app\n"), "/caf\xE9.app");
    EXPECT_EQ(target(std::string_view("/Applications\0/x", 16)), std::nullopt);
    fs::remove(bundle / targetFile);
    makeFolder(bundle / targetFile);
    EXPECT_EQ(AppClassifier::readLauncherTarget(bundle), std::nullopt);
}

TEST_F(AppClassification, ReadsNoTargetThatIsLongerThanAnyPath) {
    const std::string padded = "/elsewhere" + std::string(64 * 1024 - 10, ' ');
    makeFile(bundle / targetFile, padded);
    EXPECT_EQ(AppClassifier::readLauncherTarget(bundle), "/elsewhere");
    makeFile(bundle / targetFile, padded + " ");
    EXPECT_EQ(AppClassifier::readLauncherTarget(bundle), std::nullopt);
    fs::resize_file(bundle / targetFile, std::uintmax_t{1} << 40);
    EXPECT_EQ(classified(bundle),
              (AppClassifier::Classification{.kind = AppRecordKind::tarvikLauncher, .isTarvikLauncher = true}));
}

TEST(AppClassifier, TakesTheDeveloperFromTheCopyrightNotice) {
    struct Case {
        const char* notice;
        const char* developer;
    };
    for (const Case& each :
         {Case{"Copyright \u00A9 2026 Acme Inc.", "2026 Acme Inc."},
          Case{"copyright \u00A9 2026 Acme", "copyright  2026 Acme"},
          Case{"\u00A9Copyright Acme\u00A9 Copyright\n", "Acme"}, Case{"CopyCopyrightright Acme", "Copyright Acme"},
          Case{"Copyright \u00A9", ""}, Case{" \n", ""}})
        EXPECT_EQ(AppClassifier::developer(plist("NSHumanReadableCopyright", each.notice)), each.developer);
}

TEST(AppClassifier, TakesTheFirstNoticeThatIsNotEmpty) {
    const auto developer = [](PropertyList first, PropertyList second) {
        return AppClassifier::developer(PropertyList::Dictionary{{"CFBundleGetInfoString", std::move(first)},
                                                                 {"NSHumanReadableCopyright", std::move(second)}});
    };
    EXPECT_EQ(developer("First", "Second"), "First");
    EXPECT_EQ(developer("", "Second"), "Second");
    EXPECT_EQ(developer(7, "Second"), "Second");
    EXPECT_EQ(developer("Copyright", "Second"), "");
    EXPECT_EQ(developer("", ""), std::nullopt);
    EXPECT_EQ(AppClassifier::developer(noPlist), std::nullopt);
}

TEST(AppClassifier, ShortensADeveloperToEightyCharacters) {
    std::string long81;
    std::string long80;
    for (int count = 0; count < 81; ++count) long81 += "e\u0301";
    for (int count = 0; count < 80; ++count) long80 += "e\u0301";
    EXPECT_EQ(AppClassifier::developer(plist("CFBundleGetInfoString", long81)), long80);
    EXPECT_EQ(AppClassifier::developer(plist("CFBundleGetInfoString", long80)), long80);
}

TEST(AppClassifier, IsNotHeldUpByANoticeOfMegabytes) {
    std::string notice;
    for (int count = 0; count < 2'000'000; ++count) notice += "\u00A9";
    EXPECT_EQ(AppClassifier::developer(plist("CFBundleGetInfoString", notice + "Acme")), "Acme");
}

TEST(AppFlags, AStoreReceiptIsAFile) {
    const test::TemporaryFolder bundle;
    EXPECT_FALSE(AppFlags::isMacAppStore(bundle.path()));
    makeLink(bundle / receipt, "/nowhere");
    EXPECT_FALSE(AppFlags::isMacAppStore(bundle.path()));
    fs::remove(bundle / receipt);
    makeFile(bundle / receipt, "");
    EXPECT_TRUE(AppFlags::isMacAppStore(bundle.path()));
}

TEST(AppFlags, AFolderCountsOnceItHoldsSomething) {
    struct Case {
        const char* folder;
        bool (*flag)(const fs::path&);
    };
    for (const Case& each : {Case{"Contents/Library/LoginItems", AppFlags::hasLoginItems},
                             Case{"Contents/Library/SystemExtensions", AppFlags::hasSystemExtension},
                             Case{"Contents/Library/Extensions", AppFlags::hasSystemExtension}}) {
        const test::TemporaryFolder bundle;
        EXPECT_FALSE(each.flag(bundle.path())) << each.folder;
        makeFolder(bundle / each.folder);
        EXPECT_FALSE(each.flag(bundle.path())) << each.folder;
        makeFile(bundle / each.folder / ".hidden", "");
        EXPECT_TRUE(each.flag(bundle.path())) << each.folder;
        EXPECT_NE(AppFlags::hasLoginItems(bundle.path()), AppFlags::hasSystemExtension(bundle.path()));

        const test::TemporaryFolder odd;
        makeFile(odd / each.folder, "a file");
        EXPECT_FALSE(each.flag(odd.path())) << each.folder;
    }
}

}  // namespace
}  // namespace tarvik
