#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Practice/DiskImages/DiskImage.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {

namespace {

using test::CommandWorld;
using test::Finished;
using test::linesOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

/// A practice machine on which sources are opened by the tools that it really has.
struct InstallSourcesWorld : CommandWorld {
    InstallSourcesWorld() {
        test::makeBundle(content / "Mixer.app", {{"CFBundleIdentifier", "org.example.mixer"}});
        test::makeBundle(content / "Mixer.app/Contents/Helper.app");
        test::makeBundle(content / "Extras/Tuner.app");
        test::makeFile(content / "Extras/Setup.pkg");
        test::makeFile(content / "Extras/install.sh", "#!/bin/sh\n");
        test::makeFolder(downloads);
    }
    fs::path image(const std::vector<Practice::DiskImage::Volume>& shown) const {
        const fs::path path = downloads / "Mixer.dmg";
        Practice::DiskImage::create(path, shown);
        return path;
    }
    Finished inspect(const fs::path& source) const { return run({"install", "inspect", source, "--format", "tsv"}); }
    /// What stands on the machine but for its Trash, which gets what was unpacked.
    std::string picture() const {
        fs::remove_all(machine.home / ".Trash");
        fs::remove_all(machine.root / "tmp");
        return test::pictureOf(machine.root);
    }

    fs::path content = folder / "content";
    fs::path downloads = machine.home / "Downloads";
};

}  // namespace

TEST(InstallSourcesCommand, LooksIntoARealImageAndLeavesNothingMounted) {
    const InstallSourcesWorld world;
    test::makeBundle(world.folder / "other/Single.app");
    const fs::path image = world.image({{"Second", world.content}, {"First", world.folder / "other"}});
    fs::permissions(image, fs::perms::owner_read);
    const auto before = world.picture();
    const auto finished = world.inspect(image);
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_THAT(linesOf(finished.output),
                ElementsAre("inspection\tdmg\t" + image.native(), EndsWith("/Volumes/Second/Extras/Setup.pkg"),
                            EndsWith("/Volumes/Second/Extras/Tuner.app"), EndsWith("/Volumes/Second/Mixer.app"),
                            EndsWith("/Volumes/First/Single.app")));
    EXPECT_EQ(world.picture(), before);
    const auto plan = world.run({"install", "plan", image, "--drive", "Studio Drive"});
    EXPECT_EQ(plan.status, 0) << plan.errors;
    EXPECT_THAT(plan.output, HasSubstr("\n 11. Make a launcher: "));
    EXPECT_EQ(world.picture(), before);
}

TEST(InstallSourcesCommand, LooksIntoARealArchive) {
    const InstallSourcesWorld world;
    const fs::path archive = world.downloads / "Mixer.zip";
    const auto made = test::runProgram(
        "/usr/bin/env", {"bsdtar", "--format", "zip", "-cf", archive, "-C", world.content, "Mixer.app", "Extras"});
    ASSERT_EQ(made.status, 0) << made.errors;
    const auto before = world.picture();
    const auto finished = world.run({"install", "inspect", archive});
    EXPECT_EQ(finished.status, 0) << finished.errors;
    EXPECT_THAT(finished.output, HasSubstr("Trust:                 zip-archive\n"));
    EXPECT_THAT(finished.output, HasSubstr("  application  Extras/Tuner.app\n"));
    EXPECT_THAT(finished.output, HasSubstr("  package      Extras/Setup.pkg\n"));
    EXPECT_THAT(finished.output, HasSubstr("  application  Mixer.app\n"));
    EXPECT_EQ(world.picture(), before);
}

TEST(InstallSourcesCommand, SaysWhatIsWrongWithWhatCannotBeOpened) {
    const InstallSourcesWorld world;
    for (const auto* name : {"Broken.dmg", "Broken.zip"}) {
        const fs::path source = world.downloads / name;
        test::makeFile(source, "nothing that can be opened");
        const auto before = world.picture();
        const auto finished = world.inspect(source);
        EXPECT_EQ(finished.status, 0) << finished.errors;
        const auto lines = linesOf(finished.output);
        ASSERT_THAT(lines, SizeIs(testing::Ge(2U))) << finished.output;
        EXPECT_THAT(lines[1], StartsWith("warning\t"));
        EXPECT_NE(lines[1], "warning\t") << "the tool has given its reason";
        EXPECT_THAT(world.run({"install", "inspect", source}).output,
                    HasSubstr("Trust:                 inspect-failed\n"));
        EXPECT_EQ(world.picture(), before);
    }
}

}  // namespace tarvik
