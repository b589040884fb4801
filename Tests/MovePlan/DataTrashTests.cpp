#include "MovePlan/DataTrash.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Notes what it is given.
class OrderOfTrash : public TrashCan {
public:
    fs::path moveToTrash(const fs::path& item) const override {
        items.push_back(item);
        return item;
    }

    mutable std::vector<fs::path> items;
};

class DataTrashTest : public testing::Test {
protected:
    DataTrashTest() {
        makeFile(caches / "one");
        makeFile(caches / "deep/two");
        makeFile(support / "three");
        makeFile(world.home / "Documents/letter");
    }

    DataTrash::Outcome trash(const std::vector<fs::path>& items) {
        return DataTrash::moveToTrash(world.host, {caches, support}, items);
    }
    fs::path trashed(const char* name) const { return world.trash->folder / name; }

    World world;
    fs::path caches = world.home / "Library/Caches/Editor";
    fs::path support = world.home / "Library/Application Support/Editor";
};

}  // namespace

TEST_F(DataTrashTest, TakesEachItem) {
    EXPECT_EQ(trash({caches / "one", support}), (DataTrash::Outcome{.movedCount = 2, .failures = {}}));
    EXPECT_FALSE(Files::itemExists(caches / "one"));
    EXPECT_TRUE(Files::exists(caches / "deep/two"));
    EXPECT_TRUE(Files::exists(trashed("one")));
    EXPECT_TRUE(Files::exists(trashed("Editor/three")));
}

TEST_F(DataTrashTest, TakesWhatLiesInAnotherItemWithThatOne) {
    const auto outcome = trash({caches / "deep/two", caches, caches / "one", caches});
    EXPECT_EQ(outcome, (DataTrash::Outcome{.movedCount = 1, .failures = {}}));
    EXPECT_TRUE(Files::exists(trashed("Editor/deep/two")));
}

TEST_F(DataTrashTest, TellsWhatLiesInAFolderFromWhatIsNamedAlike) {
    const std::vector<std::string> names = {"deep!", "deep -", "deep.plist", "deep\x01", "deep", "deep-er"};
    std::vector<fs::path> items;
    for (const auto& name : names) {
        makeFile(caches / name / "inside");
        for (const fs::path& item : {caches / name / "inside", caches / name}) items.push_back(item);
    }
    std::rotate(items.begin(), items.begin() + 3, items.end());
    EXPECT_EQ(trash(items), (DataTrash::Outcome{.movedCount = 6, .failures = {}}));
    for (const auto& name : names) EXPECT_TRUE(Files::exists(trashed(name.c_str()) / "inside")) << name;
}

TEST_F(DataTrashTest, TakesTheItemsInTheOrderInWhichTheyAreNamed) {
    const auto order = std::make_shared<OrderOfTrash>();
    world.host.trash = order;
    trash({support / "three", caches / "one", caches / "deep/two"});
    EXPECT_THAT(order->items, ElementsAre(support / "three", caches / "one", caches / "deep/two"));
}

TEST_F(DataTrashTest, TakesAnItemOnceThatIsNamedInTwoWays) {
    makeLink(world.home / "Bücher", world.home / "Library");
    const fs::path alias = world.home / "Bücher/Caches/Editor";
    const auto outcome = DataTrash::moveToTrash(world.host, {caches, alias},
                                                {alias / "one", caches / "one", alias / "deep/two", caches / "deep"});
    EXPECT_EQ(outcome, (DataTrash::Outcome{.movedCount = 2, .failures = {}}));
    EXPECT_TRUE(Files::exists(trashed("deep/two")));
}

TEST_F(DataTrashTest, LeavesWhatIsNoDataOfTheApplication) {
    for (const fs::path& item : {world.home / "Documents", world.home, caches.parent_path(), caches / "../Player",
                                 fs::path(caches.native() + "X"), fs::path("/"), fs::path()}) {
        const auto outcome = trash({item});
        EXPECT_EQ(outcome.movedCount, 0) << item;
        EXPECT_THAT(outcome.failures, ElementsAre(HasSubstr("is none of the application's own files"))) << item;
    }
    EXPECT_TRUE(Files::exists(world.home / "Documents/letter"));
}

TEST_F(DataTrashTest, LeavesWhatIsReachedThroughALink) {
    makeLink(caches / "way", world.home / "Documents");
    EXPECT_EQ(trash({caches / "way/letter"}).movedCount, 0);
    fs::rename(support, world.home / "kept");
    makeLink(support, world.home / "Documents");
    EXPECT_EQ(trash({support / "letter"}).movedCount, 0);
    EXPECT_TRUE(Files::exists(world.home / "Documents/letter"));
    EXPECT_EQ(trash({caches / "way"}).movedCount, 1) << "the link itself is the application's";
    EXPECT_TRUE(Files::exists(world.home / "Documents/letter"));
}

TEST_F(DataTrashTest, LeavesLinksToDrives) {
    const fs::path onDrive = world.drive / "ExternalTarvik/Data/Editor";
    makeFile(onDrive / "four");
    fs::remove_all(support);
    makeLink(support, onDrive);
    makeLink(caches / "gone", world.folder / "Elsewhere/ExternalTarvik/Data/gone");
    makeLink(caches / "plain", "one");
    EXPECT_TRUE(DataTrash::isLinkToDrive(world.host, support));
    EXPECT_TRUE(DataTrash::isLinkToDrive(world.host, caches / "gone"));
    makeLink(world.home / "by hand", world.folder / "Volumes/Other/anything");
    EXPECT_TRUE(DataTrash::isLinkToDrive(world.host, world.home / "by hand"));
    EXPECT_FALSE(DataTrash::isLinkToDrive(world.host, caches / "plain"));
    EXPECT_FALSE(DataTrash::isLinkToDrive(world.host, caches));
    const auto outcome = trash({support, caches / "gone", caches / "plain"});
    EXPECT_EQ(outcome.movedCount, 1);
    EXPECT_THAT(outcome.failures,
                ElementsAre("Editor is a link to a drive: use Move Back", "gone is a link to a drive: use Move Back"));
    EXPECT_EQ(Files::linkText(support), onDrive);
}

TEST_F(DataTrashTest, GoesOnAfterAFailure) {
    const auto outcome = trash({caches / "gone", caches / "one"});
    EXPECT_EQ(outcome.movedCount, 1);
    EXPECT_EQ(outcome.failures.size(), 1U);
    world.trash->refuses = true;
    EXPECT_EQ(trash({caches, support}).failures.size(), 2U);
    EXPECT_TRUE(Files::exists(caches / "deep/two"));
}

TEST_F(DataTrashTest, TellsWhatItDid) {
    EXPECT_EQ(DataTrash::movedText({.movedCount = 1, .failures = {}}), "Moved 1 item to Trash.");
    EXPECT_EQ(DataTrash::movedText({.movedCount = 2, .failures = {}}), "Moved 2 items to Trash.");
    EXPECT_EQ(DataTrash::movedText({}), "");
    EXPECT_EQ(DataTrash::failureText({}), "");
    EXPECT_EQ(DataTrash::failureText({.movedCount = 0, .failures = {"Why"}}),
              "1 item could not be moved to Trash: Why.");
    EXPECT_EQ(DataTrash::failureText({.movedCount = 3, .failures = {"Why", "Other"}}),
              "2 items could not be moved to Trash: Why.");
}

TEST_F(DataTrashTest, AsksFirst) {
    EXPECT_EQ(DataTrash::confirm("Editor", 2, 3'000'000),
              (Dialog{"Move 2 items to Trash?",
                      "Total 3 MB. Editor may lose settings or documents without them.",
                      {"Move to Trash", "Cancel"}}));
    EXPECT_THAT(DataTrash::confirm("Editor", 1, 0).text, HasSubstr("without it."));
}

}  // namespace tarvik::test
