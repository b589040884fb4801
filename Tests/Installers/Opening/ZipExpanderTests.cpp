#include "Installers/Opening/OpenedLeftovers.h"
#include "Installers/Opening/ZipExpander.h"
#include "Platform/Files/Files.h"
#include "Practice/Archives/ZipWriter.h"
#include "Support/ThrownFailure.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tarvik::test {
namespace {

using Practice::ZipWriter;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// A world with an archive, whose tool notes that it was started and does what the script says: "$4" is the goal.
class ExpandingWorld : public World {
public:
    explicit ExpandingWorld(const std::string& script, const ZipWriter& content = ZipWriter().add({.name = "good"}))
        : archive(folder / "My archive.zip") {
        withDitto("echo \"$1 $2 $3\" > " + called().native() + "\n" + script);
        content.writeTo(archive);
    }

    fs::path called() const { return folder / "called"; }
    std::vector<std::string> namesInTemporary() const { return Files::names(host.temporary); }
    std::vector<std::string> namesInTrash() const { return Files::names(trash->folder); }

    fs::path archive;
};

TEST(ZipExpander, ExpandsIntoANewFolderOfTheTemporaryOne) {
    const ExpandingWorld world("echo content > \"$4/file\"");
    const fs::path expanded = ZipExpander::expand(world.host, world.archive);
    EXPECT_EQ(expanded.parent_path(), world.host.temporary);
    EXPECT_THAT(expanded.filename().native(), StartsWith("TarvikZip-"));
    EXPECT_EQ(contentOf(expanded / "file"), "content\n");
    EXPECT_EQ(contentOf(world.called()), "-x -k " + world.archive.native() + "\n");
    EXPECT_EQ(statusOf(expanded).st_mode & 0777U, 0700U);
    EXPECT_NE(ZipExpander::expand(world.host, world.archive), expanded);
}

TEST(ZipExpander, SetsAsideWhatAToolThatFailsHasUnpacked) {
    const ExpandingWorld world("echo half > \"$4/half\"; echo 'ditto: bad luck' >&2; exit 3");
    const auto failure = failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); });
    EXPECT_EQ(failure.domain(), "zip");
    EXPECT_EQ(failure.code(), 3);
    EXPECT_EQ(failure.description(), "ditto: bad luck\n");
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
    EXPECT_THAT(world.namesInTrash(), ElementsAre(StartsWith("TarvikZip-")));
}

TEST(ZipExpander, SaysThatTheToolIsMissing) {
    ExpandingWorld world("true");
    world.host.tools.ditto = world.folder / "none";
    EXPECT_EQ(failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); }).code(), 127);
    EXPECT_THAT(world.namesInTemporary(), IsEmpty());
}

TEST(ZipExpander, StartsNoToolOnAnArchiveThatIsNotSafe) {
    for (const ZipWriter& archive :
         {ZipWriter().add({.name = "../evil"}), ZipWriter().addLink("link", "/tmp").add({.name = "link/evil"})}) {
        const ExpandingWorld world("true", archive);
        const auto failure = failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); });
        EXPECT_EQ(failure.domain(), "zip");
        EXPECT_EQ(failure.code(), 1);
        EXPECT_EQ(failure.description(), "Archive contains unsafe paths.");
        EXPECT_FALSE(Files::itemExists(world.called()));
        EXPECT_THAT(world.namesInTemporary(), IsEmpty());
        EXPECT_THAT(world.namesInTrash(), IsEmpty());
    }
}

TEST(ZipExpander, StartsNoToolOnAnArchiveThatWouldFillTheVolume) {
    ExpandingWorld world("true", ZipWriter().add({.name = "bomb", .content = "1", .claimedSize = 4'000'000'000}));
    world.volumes->available = 3'999'999'999;
    const auto failure = failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); });
    EXPECT_EQ(failure.domain(), "zip");
    EXPECT_EQ(failure.code(), ENOSPC);
    EXPECT_EQ(failure.description(),
              "Not enough space to expand the archive. Need 4000000000 bytes, have 3999999999 bytes.");
    EXPECT_FALSE(Files::itemExists(world.called()));
    world.volumes->available = 2'000'000'000;
    EXPECT_EQ(failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); }).description(),
              "Not enough space to expand the archive. Need 4 GB, have 2 GB.");
    world.volumes->available = 4'000'000'000;
    ZipExpander::expand(world.host, world.archive);
    world.volumes->available = std::nullopt;
    ZipExpander::expand(world.host, world.archive);
}

TEST(ZipExpander, RefusesAnArchiveThatWasExchangedAfterTheLook) {
    // The last one leaves the size as it is, until the clock has gone on.
    for (const std::string change : {"cp \"$3\" \"$3.new\"; mv \"$3.new\" \"$3\"", "echo >> \"$3\"", "rm \"$3\"",
                                     "touch \"$3.new\"; until [ \"$3\" -nt \"$3.new\" ]; do touch \"$3\"; done"}) {
        const ExpandingWorld world(change);
        const auto failure = failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); });
        EXPECT_EQ(failure.code(), 1) << change;
        EXPECT_EQ(failure.description(), "Archive contains unsafe paths.") << change;
        EXPECT_THAT(world.namesInTemporary(), IsEmpty());
        EXPECT_THAT(world.namesInTrash(), ElementsAre(StartsWith("TarvikZip-")));
    }
}

TEST(ZipExpander, LetsTheToolDecideWhatIsNoArchive) {
    ExpandingWorld world("echo 'no archive' >&2; exit 1");
    makeFile(world.archive, "text");
    EXPECT_EQ(failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); }).description(), "no archive\n");
    EXPECT_EQ(failureThrownBy([&] { ZipExpander::expand(world.host, world.folder / "none.zip"); }).description(),
              "no archive\n");
}

TEST(ZipExpander, KeepsTheFolderFromOtherStartsAsLongAsItIsHeld) {
    const ExpandingWorld world("echo content > \"$4/file\"");
    fs::path expanded;
    {
        OpenedHold hold;
        expanded = ZipExpander::expand(world.host, world.archive, hold);
        OpenedLeftovers::sweep(world.host);
        EXPECT_EQ(contentOf(expanded / "file"), "content\n");
    }
    OpenedLeftovers::sweep(world.host);
    EXPECT_FALSE(Files::itemExists(expanded));
    EXPECT_THAT(world.namesInTrash(), ElementsAre(expanded.filename().native()));
}

TEST(ZipExpander, KeepsTheFolderFromOtherStartsWhileTheToolRuns) {
    World world;
    makeFile(world.folder / "archive.zip", ZipWriter().bytes());
    const fs::path started = world.folder / "started";
    const fs::path go = world.folder / "go";
    world.withDitto("touch " + started.native() + "\n" + waitFor(go) + "\ntouch \"$4/file\"");
    std::thread expanding([&] { ZipExpander::expand(world.host, world.folder / "archive.zip"); });
    EXPECT_TRUE(comesToStand(started));
    OpenedLeftovers::sweep(world.host);
    makeFile(go);
    expanding.join();
    EXPECT_THAT(Files::names(world.host.temporary), ElementsAre(StartsWith("TarvikZip-")));
}

}  // namespace
}  // namespace tarvik::test
