#include "Installers/Opening/ZipCheck.h"
#include "Installers/Opening/ZipExpander.h"
#include "Platform/Files/Files.h"
#include "Practice/Archives/ZipWriter.h"
#include "Support/Mutator.h"
#include "Support/RealVolume.h"
#include "Support/ThrownFailure.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::test {
namespace {

using Practice::ZipWriter;
using ::testing::IsEmpty;

/// A world deep enough that what climbs out of the temporary folder still lands in it, with this system's own tool. All
/// but the temporary folder, the Trash and the archive must stay as it is.
class HostileWorld : public World {
public:
    HostileWorld() : archive(folder / "archive.zip"), outside(folder / "outside") {
        withRealDitto();
        makeFile(outside / "victim", "untouched");
        host.temporary = folder / "deep/deeper/deepest/tmp";
        makeFolder(host.temporary);
    }

    /// Expands the bytes. @returns the failure's code; 0 when there was none.
    int expand(const std::string& bytes) {
        makeFile(archive, bytes);
        const std::string before = picture();
        const int code = failureThrownBy([&] { expanded = ZipExpander::expand(host, archive); }).code();
        EXPECT_EQ(picture(), before);
        return code;
    }
    /// So that the next one begins with nothing.
    void clear() const {
        for (const std::string& name : Files::names(host.temporary)) Files::removeItem(host.temporary / name);
        if (Files::exists(trash->folder)) Files::removeItem(trash->folder);
    }

    fs::path archive;
    fs::path outside;
    fs::path expanded;

private:
    /// Without what may change: the last of the deep folders is the temporary one.
    std::string picture() const {
        std::string all = pictureOf(outside) + pictureOf(home) + pictureOf(drive);
        for (fs::path place = host.temporary.parent_path(); place != folder.path(); place = place.parent_path())
            for (const std::string& name : Files::names(place)) all += (place / name).native() + "\n";
        for (const std::string& name : Files::names(folder.path()))
            if (name != "Trash") all += name + "\n";
        return all;
    }
};

TEST(HostileArchive, WritesNothingOutside) {
    HostileWorld world;
    const std::string out = world.outside;
    const std::vector<ZipWriter> archives = {
        ZipWriter().add({.name = "../evil"}),
        ZipWriter().add({.name = out + "/evil"}),
        ZipWriter().addLink("link", out).add({.name = "link/evil"}),
        ZipWriter().addLink("link", out + "/victim").add({.name = "link", .content = "evil"}),
        ZipWriter().add({.name = "link/evil"}).addLink("link", out),
        ZipWriter().add({.name = "good", .localName = "../evil"}),
        ZipWriter().add({.name = "../evil", .isListed = false}),
        ZipWriter().add({.name = "device", .mode = 0060666}),
        ZipWriter().add(
            {.name = "hard", .extra = ZipWriter::field(0x000D, Practice::lowFirst(0, 12) + out + "/victim")}),
        ZipWriter()
            .addLink("._victim", out + "/victim")
            .add({.name = "__MACOSX/._victim", .content = std::string("\0\5\x16\7\0\2\0\0", 8)}),
        ZipWriter().addLink("one", "..").addLink("one/two", "..").add({.name = "one/two/evil"}),
    };
    for (const ZipWriter& archive : archives) {
        EXPECT_EQ(world.expand(archive.bytes()), 1);
        EXPECT_THAT(Files::names(world.host.temporary), IsEmpty());
        EXPECT_THAT(Files::names(world.trash->folder), IsEmpty()) << "nothing was unpacked";
    }
}

TEST(HostileArchive, KeepsLinksThatOnlyLeadOutside) {
    HostileWorld world;
    EXPECT_EQ(world.expand(ZipWriter().addLink("Applications", "/Applications").add({.name = "App.app/file"}).bytes()),
              0);
    EXPECT_EQ(Files::readLink(world.expanded / "Applications"), "/Applications");
}

TEST(HostileArchive, NeverStaysInTheTemporaryFolderWhereItsNamesAreTooMuch) {
    HostileWorld world;
    std::string deep;
    for (int level = 0; level < 10'000; ++level) deep += "d/";
    for (const std::string& name : {deep + "file", std::string(4096, 'n'), std::string(300, 'n') + "/file"}) {
        EXPECT_NE(world.expand(ZipWriter().add({.name = "first"}).add({.name = name}).bytes()), 0);
        EXPECT_THAT(Files::names(world.host.temporary), IsEmpty());
        world.clear();
    }
}

/// On a volume that takes them for one, the tool says so or lets the last one win; outside nothing changes.
TEST(HostileArchive, MayHoldNamesThatDifferOnlyInCase) {
    HostileWorld world;
    const std::string bytes = ZipWriter().add({.name = "file"}).add({.name = "FILE"}).add({.name = "File/x"}).bytes();
    const int code = world.expand(bytes);
    EXPECT_FALSE(ZipCheck::of(world.archive).isUnsafe);
    if (code != 0) return;
    EXPECT_THAT(Files::names(world.expanded), ::testing::Contains("FILE"));
}

TEST(HostileArchive, IsRefusedWhenItClaimsMoreThanTheVolumeHolds) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    HostileWorld world;
    const RealVolume volume = RealVolume::memory(world.folder.path(), 2 * megabyte);
    world.host.temporary = volume / "tmp";
    makeFolder(world.host.temporary);
    world.volumes->available = 2 * megabyte;
    ZipWriter bomb;
    for (int i = 0; i < 100; ++i) bomb.add({.name = std::to_string(i), .content = "1", .claimedSize = 100'000'000});
    makeFile(world.archive, bomb.bytes());
    EXPECT_LT(fs::file_size(world.archive), 10'240U);
    const Failure failure = failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); });
    EXPECT_EQ(failure.description(), "Not enough space to expand the archive. Need 10 GB, have 2 MB.");
    EXPECT_THAT(Files::names(world.host.temporary), IsEmpty());
}

TEST(HostileArchive, LeavesNothingInTheTemporaryFolderWhenTheDriveIsFull) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    HostileWorld world;
    const RealVolume volume = RealVolume::memory(world.folder.path(), 2 * megabyte);
    world.host.temporary = volume / "tmp";
    world.volumes->available = std::nullopt;
    ZipWriter().add({.name = "large", .content = std::string(5'000'000, 'x')}).writeTo(world.archive);
    const Failure failure = failureThrownBy([&] { ZipExpander::expand(world.host, world.archive); });
    EXPECT_EQ(failure.domain(), "zip");
    EXPECT_THAT(failure.description(), ::testing::HasSubstr("No space left on device"));
    EXPECT_THAT(Files::names(world.host.temporary), ::testing::Each(".TarvikTrash"));
}

TEST(HostileArchive, IsReadQuicklyHoweverManyEntriesItHas) {
    ZipWriter archive;
    for (int i = 0; i < 50'000; ++i)
        archive.add({.name = "folder " + std::to_string(i % 100) + "/file " + std::to_string(i)});
    archive.addLink("folder 7x", "/tmp");
    const TemporaryFolder folder;
    archive.writeTo(folder / "archive.zip");
    EXPECT_FALSE(ZipCheck::of(folder / "archive.zip").isUnsafe);
    archive.addLink("folder 7", "/tmp").writeTo(folder / "unsafe.zip");
    EXPECT_TRUE(ZipCheck::of(folder / "unsafe.zip").isUnsafe);
}

/// An archive with everything that a hostile one may try, parts of which are then broken.
std::string baseOfFuzz(const std::string& outside, unsigned kind) {
    ZipWriter archive;
    archive.addFolder("folder/").add({.name = "folder/file", .content = "content"});
    archive.add({.name = "late", .content = "late sizes", .hasDescriptor = true});
    archive.addLink(kind % 2 == 0 ? "link" : "lynk", outside).add({.name = "link/evil", .content = "evil"});
    if (kind % 3 == 0) archive.add({.name = "../evil"});
    if (kind % 3 == 1) archive.add({.name = "..-evil"}).add({.name = "hidden", .isListed = false});
    archive.add({.name = "__MACOSX/folder/._file", .content = "attributes"});
    return archive.bytes();
}

/// What means something to a reader of archives.
Mutator mutatorOfArchives(unsigned seed) {
    return {seed,
            {std::string("PK\3\4"), std::string("PK\1\2"), std::string("PK\5\6"), std::string("PK\6\6"),
             std::string("PK\6\7"), std::string("PK\7\b"), "../", "/", "link", Practice::lowFirst(1, 2),
             Practice::lowFirst(0, 8)}};
}

TEST(HostileArchive, IsReadWithoutHarmHoweverItIsBroken) {
    constexpr unsigned tried = 5'000;
    const TemporaryFolder folder;
    Mutator mutator = mutatorOfArchives(1);
    unsigned found = 0;
    for (unsigned turn = 0; turn < tried; ++turn) {
        // A new file each time: some file systems flush one that is written anew.
        const fs::path file = folder / std::to_string(turn);
        makeFile(file, mutator.mutated(baseOfFuzz("/outside", turn)));
        found += ZipCheck::of(file).isUnsafe ? 1U : 0U;
        fs::remove(file);
    }
    std::cout << tried << " broken archives read, " << found << " taken for unsafe\n";
    EXPECT_GT(found, tried / 3);
    EXPECT_LT(found, tried);
}

TEST(HostileArchive, WritesNothingOutsideHoweverItIsBroken) {
    constexpr unsigned tried = 500;
    HostileWorld world;
    Mutator mutator = mutatorOfArchives(2);
    unsigned expanded = 0;
    for (unsigned turn = 0; turn < tried; ++turn) {
        // Nearly hostile: one byte may make them so.
        const unsigned kind = turn % 2 == 0 ? 1 : 5;
        expanded += world.expand(mutator.mutated(baseOfFuzz(world.outside, kind))) == 0 ? 1U : 0U;
        world.clear();
    }
    EXPECT_GT(expanded, 0U);
    std::cout << tried << " broken archives tried, " << expanded << " expanded\n";
}

}  // namespace
}  // namespace tarvik::test
