#include "Platform/Text/PropertyList.h"
#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/Mutator.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace tarvik::test {
namespace {

using Dictionary = PropertyList::Dictionary;

constexpr std::uintmax_t gigabyte = std::uintmax_t{1} << 30;

/// Each puts something where a file is expected.
const std::function<void(const fs::path&)> intruders[] = {
    [](const fs::path& path) { makeFolder(path); },
    [](const fs::path& path) { makePipe(path); },
    [](const fs::path& path) { makeSocket(path); },
    [](const fs::path& path) { makeLink(path, path); },
    [](const fs::path& path) { makeLink(path, "/dev/zero"); },
    [](const fs::path& path) {
        makeFile(path);
        fs::resize_file(path, gigabyte);
    },
    [](const fs::path& path) { makeFile(path, ""); },
    [](const fs::path& path) { makeFile(path, std::string(3000, '\xFF')); },
};

PropertyList sealOf(const SignedApp& app) {
    return PropertyList::dictionaryAt(app.seal);
}

/// The flaw that is found when the seal is another one, for which the record vouches.
std::string flawWithSeal(const SignedApp& app, const PropertyList& seal) {
    app.forgeSeal(seal.xml());
    return app.flaw();
}

PropertyList withItem(const PropertyList& seal, const std::string& path, const PropertyList& item) {
    Dictionary changed = *seal.as<Dictionary>();
    Dictionary files = *changed.at("files2").as<Dictionary>();
    files[path] = item;
    changed["files2"] = files;
    return changed;
}

PropertyList with(const PropertyList& seal, const std::string& key, const PropertyList& value) {
    Dictionary changed = *seal.as<Dictionary>();
    changed[key] = value;
    return changed;
}

const std::string sealChanged = "invalid resource directory (directory or signature have been modified)\n";

TEST(CodesignHostileBundle, AFileOfTheSignatureThatIsNoneIsNoPassAndStopsNothing) {
    for (const char* name : {"CodeResources", "CodeDirectory", "CodeRequirements"})
        for (const auto& intrude : intruders) {
            const SignedApp app;
            fs::remove(app.signature / name);
            intrude(app.signature / name);
            EXPECT_NE(app.flaw(), "valid") << name;
        }
}

TEST(CodesignHostileBundle, AListOrAProgramThatIsNoneIsNoPassAndStopsNothing) {
    for (const char* name : {"Contents/Info.plist", "Contents/MacOS/Editor"})
        for (const auto& intrude : intruders) {
            const SignedApp app;
            fs::remove(app / name);
            intrude(app / name);
            EXPECT_NE(app.flaw(), "valid") << name;
        }
}

TEST(CodesignHostileBundle, AResourceThatIsNoneIsNoPassAndStopsNothing) {
    for (const char* name : {"Contents/Resources/abc.txt", "Contents/Resources/new"})
        for (const auto& intrude : intruders) {
            const SignedApp app;
            fs::remove(app / name);
            intrude(app / name);
            const bool isEmptyFolder = fs::is_directory(fs::symlink_status(app / name));
            if (isEmptyFolder && std::string(name).ends_with("new")) continue;
            EXPECT_NE(app.flaw(), "valid") << name;
        }
}

TEST(CodesignHostileBundle, WhatCannotBeSealedIsNotSigned) {
    const SignedApp app;
    makePipe(app / "Contents/Resources/pipe");
    const auto refused = app.sign();
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.stderr,
                testing::EndsWith("In subcomponent: " + (app / "Contents/Resources/pipe").native() + "\n"));
}

TEST(CodesignHostileBundle, ASealInTheOtherFormOfItsListsIsOne) {
    const SignedApp app;
    app.forgeSeal(sealOf(app).binary());
    EXPECT_EQ(app.flaw(), "valid");
}

TEST(CodesignHostileBundle, ASealThatLeavesOutWhatItLikesIsNone) {
    const SignedApp app;
    const auto seal = sealOf(app);
    makeFile(app / "Contents/Resources/smuggled");
    const PropertyList nothing = Dictionary{{"^.*", Dictionary{{"omit", true}, {"weight", 9000.0}}}};
    EXPECT_EQ(flawWithSeal(app, with(seal, "rules2", nothing)), "resource envelope is obsolete (custom omit rules)\n");
    Dictionary old = *seal.as<Dictionary>();
    old.erase("rules2");
    EXPECT_EQ(flawWithSeal(app, old), "resource envelope is obsolete (version 1 signature)\n");
    EXPECT_EQ(flawWithSeal(app, seal),
              "a sealed resource is missing or invalid\n"
              "file added: Contents/Resources/smuggled\n");
}

TEST(CodesignHostileBundle, ASealWithItemsOfWrongTypesIsNone) {
    const SignedApp app;
    const auto seal = sealOf(app);
    const PropertyList::Data digest{std::string(32, 'x')};
    const PropertyList::Data shorter{std::string(31, 'x')};
    for (const PropertyList& item :
         {PropertyList("text"), PropertyList(true), PropertyList(7), PropertyList(PropertyList::List{}),
          PropertyList(Dictionary{}), PropertyList(Dictionary{{"hash2", "text"}}),
          PropertyList(Dictionary{{"hash2", shorter}}),
          PropertyList(Dictionary{{"hash2", digest}, {"symlink", "abc.txt"}}), PropertyList(Dictionary{{"symlink", 1}}),
          PropertyList(Dictionary{{"cdhash", digest}}),
          PropertyList(Dictionary{{"hash2", digest}, {"optional", "yes"}})})
        EXPECT_EQ(flawWithSeal(app, withItem(seal, "Resources/abc.txt", item)), sealChanged) << item.xml();
    for (const PropertyList& files : {PropertyList("text"), PropertyList(PropertyList::List{}), PropertyList(1)})
        EXPECT_EQ(flawWithSeal(app, with(seal, "files2", files)), sealChanged);
    for (const char* bytes : {"", "bplist00", "<plist", "no list at all", "<plist><array/></plist>"}) {
        app.forgeSeal(bytes);
        EXPECT_EQ(app.flaw(), sealChanged) << bytes;
    }
}

TEST(CodesignHostileBundle, ASealNeverLeadsOutOfTheBundle) {
    const SignedApp app;
    makeFile(app.folder / "outside", "abc");
    const auto sealed = *sealOf(app).find("files2")->find("Resources/abc.txt");
    for (const char* path :
         {"../../outside", "Resources/../../../outside", "Resources//abc.txt", "./Resources/abc.txt", ""})
        EXPECT_THAT(flawWithSeal(app, withItem(sealOf(app), path, sealed)),
                    testing::StartsWith("a sealed resource is missing or invalid\nfile missing: "))
            << path;
}

TEST(CodesignHostileBundle, AProgramNameNeverLeadsOutOfTheBundle) {
    const TemporaryFolder folder;
    for (const char* name : {"../../../outside", "/bin/sh", "..", ".", ""}) {
        const fs::path app = folder / "Editor.app";
        makeFile(folder / "outside");
        makeFolder(app / "Contents/MacOS");
        makeFile(app / "Contents/Info.plist", PropertyList(Dictionary{{"CFBundleExecutable", name}}).xml());
        const auto refused = runStandIn("codesign", {"--force", "--sign", "-", app});
        EXPECT_EQ(refused.status, 1) << name;
        EXPECT_EQ(refused.stderr, app.native() + ": bundle format unrecognized, invalid, or unsuitable\n");
    }
}

TEST(CodesignHostileBundle, ContentsElsewhereAreNotTheBundles) {
    const SignedApp app;
    fs::rename(app.contents, app.folder / "elsewhere");
    makeLink(app.contents, app.folder / "elsewhere");
    EXPECT_NE(app.flaw(), "valid");
}

TEST(CodesignHostileBundle, BundlesInBundlesWithoutAnEndComeToOne) {
    const TemporaryFolder folder;
    fs::path bundle = folder / "A.app";
    const fs::path outermost = bundle;
    for (int depth = 0; depth < 60; ++depth) {
        makeUnsignedBundle(bundle);
        bundle = bundle / "Contents/PlugIns/A.app";
    }
    makeUnsignedBundle(bundle);
    EXPECT_EQ(runStandIn("codesign", {"--force", "--deep", "--sign", "-", outermost}).status, 0);
    EXPECT_EQ(runStandIn("codesign", {"--verify", "--deep", "--strict", outermost}).status, 0);
    flipByte(bundle / "Contents/MacOS/A", 0);
    EXPECT_EQ(runStandIn("codesign", {"--verify", "--deep", "--strict", outermost}).status, 1);
}

TEST(CodesignHostileBundle, BrokenBytesAreNeverTakenForASeal) {
    const SignedApp app;
    const std::string whole = contentOf(app.seal);
    makeFile(app / "Contents/Resources/smuggled");
    Mutator mutator(7,
                    {"<true/>", "<dict>", "</dict>", "<key>Resources/smuggled</key>", "hash2", "omit", "\0", "&amp;"});
    for (int i = 0; i < 150; ++i) {
        app.forgeSeal(mutator.mutated(whole));
        EXPECT_NE(app.flaw(), "valid") << i;
    }
}

}  // namespace
}  // namespace tarvik::test
