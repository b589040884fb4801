#include "State/Uninstall/PlannedUninstall.h"
#include "State/Uninstall/UninstallRecords.h"

#include <QSignalSpy>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using enum UninstallCategory;

class PlannedUninstallTest : public testing::Test {
protected:
    void plan(std::vector<UninstallCandidate> candidates) {
        planned.setApp(atlas);
        planned.setPlan({.app = atlas, .candidates = std::move(candidates), .warnings = {}});
    }
    /// "label [x] detail", "  path [ ] reason size".
    std::vector<std::string> lines() const {
        std::vector<std::string> all;
        for (int row = 0; row < planned.rowsModel()->rowCount(); ++row) {
            const auto text = [&](const char* role) { return value(row, role).toString().toStdString(); };
            const char* boxes[] = {"[ ]", "[-]", "[x]"};
            const std::string box = boxes[value(row, "checkState").toInt()];
            std::string line = text("name") + " " + box + " " + text("detail");
            if (text("kind") == "candidate") line = "  " + line + " " + text("sizeText");
            if (value(row, "isPrivileged").toBool()) line += " admin";
            all.push_back(line);
        }
        return all;
    }
    QVariant value(int row, const char* role) const {
        const auto* model = planned.rowsModel();
        return model->data(model->index(row, 0), model->roleNames().key(role));
    }

    AppRecord atlas = appRecord("Atlas");
    mutable PlannedUninstall planned{"/Users/me"};
};

}  // namespace

TEST_F(PlannedUninstallTest, KnowsNothingAtFirst) {
    EXPECT_FALSE(planned.hasApp());
    EXPECT_FALSE(planned.hasPlan());
    EXPECT_FALSE(planned.isRemovable());
    EXPECT_EQ(planned.name(), "");
    EXPECT_EQ(planned.developer(), "");
    EXPECT_EQ(planned.verification(), "");
    EXPECT_EQ(planned.itemsText(), "");
    EXPECT_EQ(planned.checkedSize() + " " + planned.checkedSizeUnit(), "0 KB");
    EXPECT_EQ(planned.checkedCountText() + " " + planned.checkedCountUnit(), "0 items");
    EXPECT_THAT(lines(), IsEmpty());
    planned.toggleCategoryChecked(caches);
    EXPECT_THAT(planned.checked(), IsEmpty());
}

TEST_F(PlannedUninstallTest, ChangesTwoRowsOfThousandsForATick) {
    std::vector<UninstallCandidate> candidates;
    for (int number = 0; number < 5000; ++number)
        candidates.push_back(candidate("/Users/me/" + std::to_string(number), caches, 1000));
    plan(std::move(candidates));
    planned.toggleSection(caches);
    ASSERT_EQ(planned.rowsModel()->rowCount(), 5001);
    EXPECT_EQ(value(0, "detail"), "5000 items · 5 MB");
    QSignalSpy changed(planned.rowsModel(), &QAbstractItemModel::dataChanged);
    QSignalSpy inserted(planned.rowsModel(), &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(planned.rowsModel(), &QAbstractItemModel::modelReset);
    planned.toggleChecked("/Users/me/4321");
    std::vector<int> rows;
    for (const auto& arguments : changed) {
        const int last = arguments.at(1).value<QModelIndex>().row();
        for (int row = arguments.at(0).value<QModelIndex>().row(); row <= last; ++row) rows.push_back(row);
    }
    EXPECT_THAT(rows, testing::SizeIs(2)) << "the item and its section";
    EXPECT_EQ(inserted.count() + reset.count(), 0);
    EXPECT_EQ(planned.checked().size(), 4999U);
    EXPECT_EQ(planned.checkedBytes(), 4'999'000);
    EXPECT_EQ(value(0, "checkState").toInt(), static_cast<int>(Qt::PartiallyChecked));
    planned.toggleSection(caches);
    EXPECT_EQ(planned.rowsModel()->rowCount(), 1);
}

TEST_F(PlannedUninstallTest, TellsOfTheApplication) {
    planned.setApp(atlas);
    EXPECT_EQ(planned.name(), "Atlas");
    EXPECT_EQ(planned.developer(), "Unknown");
    EXPECT_EQ(planned.verification(), "Developer ID");
    EXPECT_EQ(planned.version(), "(none)");
    EXPECT_EQ(planned.bundleId(), "org.Atlas.app");
    EXPECT_EQ(planned.pathText(), "/Applications/Atlas.app");
    atlas.developer = "Ada Apps";
    atlas.isMacAppStore = true;
    atlas.version = "1.2";
    atlas.bundleIdentifier.reset();
    atlas.bundlePath = "/Users/me/Applications/Atlas.app";
    planned.setApp(atlas);
    EXPECT_EQ(planned.developer(), "Ada Apps");
    EXPECT_EQ(planned.verification(), "App Store");
    EXPECT_EQ(planned.version(), "1.2");
    EXPECT_EQ(planned.bundleId(), "(none)");
    EXPECT_EQ(planned.pathText(), "~/Applications/Atlas.app");
}

TEST_F(PlannedUninstallTest, TicksWhatGoesByDefault) {
    plan({candidate(atlas.bundlePath, executable, 3'000'000),
          candidate("/Library/LaunchDaemons/a.plist", launchDaemons, 1, false)});
    EXPECT_THAT(planned.checked(), ElementsAre(atlas.bundlePath.native()));
    EXPECT_EQ(planned.checkedBytes(), 3'000'000);
    EXPECT_EQ(planned.checkedSize() + " " + planned.checkedSizeUnit(), "3 MB");
    EXPECT_EQ(planned.checkedCountText() + " " + planned.checkedCountUnit(), "1 item");
    EXPECT_EQ(planned.itemsText(), "2 items");
    planned.toggleChecked("/Library/LaunchDaemons/a.plist");
    EXPECT_EQ(planned.checkedCountText() + " " + planned.checkedCountUnit(), "2 items");
    EXPECT_EQ(planned.checkedBytes(), 3'000'001);
}

TEST_F(PlannedUninstallTest, ShowsSectionsAndBelowOpenOnesTheirCandidates) {
    auto daemon = candidate("/Library/LaunchDaemons/a.plist", launchDaemons, 500, false);
    daemon.isPrivileged = true;
    plan({candidate(atlas.bundlePath, executable, 3'000'000),
          candidate("/Users/me/Library/Caches/a", caches, 1'000'000),
          candidate("/Users/me/Library/Caches/b", caches, 0, false), daemon,
          candidate("org.atlas.pkg", receipts, 0, false)});
    EXPECT_THAT(lines(), ElementsAre("Executables [x] 1 item · 3 MB", "Caches [-] 2 items · 1 MB",
                                     "Launch Daemons [ ] 1 item · 1 KB", "Receipts [ ] 1 item · Zero KB"));
    planned.toggleSection(caches);
    planned.toggleSection(launchDaemons);
    planned.toggleSection(receipts);
    EXPECT_THAT(lines(),
                ElementsAre("Executables [x] 1 item · 3 MB", "Caches [-] 2 items · 1 MB",
                            "  ~/Library/Caches/a [x] Matches bundle id 1 MB",
                            "  ~/Library/Caches/b [ ] Matches bundle id Zero KB", "Launch Daemons [ ] 1 item · 1 KB",
                            "  /Library/LaunchDaemons/a.plist [ ] Matches bundle id 1 KB admin",
                            "Receipts [ ] 1 item · Zero KB", "  org.atlas.pkg [ ] Matches bundle id "));
    EXPECT_FALSE(value(7, "itemPath").isValid()) << "a receipt is no item to show";
    EXPECT_TRUE(value(5, "itemPath").isValid());
    planned.toggleSection(caches);
    EXPECT_EQ(lines().size(), 6U);
}

TEST_F(PlannedUninstallTest, TicksAWholeSectionAndTakesTheTicksAway) {
    plan({candidate("/a", caches), candidate("/b", caches, 0, false), candidate("/c", logs)});
    planned.toggleCategoryChecked(caches);
    EXPECT_THAT(planned.checked(), UnorderedElementsAre("/a", "/b", "/c"));
    planned.toggleCategoryChecked(caches);
    EXPECT_THAT(planned.checked(), ElementsAre("/c"));
    planned.toggleChecked("/c");
    EXPECT_THAT(planned.checked(), IsEmpty());
    planned.toggleCategoryChecked(caches);
    EXPECT_THAT(planned.checked(), UnorderedElementsAre("/a", "/b"));
}

TEST_F(PlannedUninstallTest, ForgetsPlanAndTicksWithTheApplicationButNotWhatIsOpen) {
    plan({candidate("/a", caches)});
    planned.toggleSection(caches);
    planned.setApp(appRecord("Brush"));
    EXPECT_FALSE(planned.hasPlan());
    EXPECT_THAT(planned.checked(), IsEmpty());
    EXPECT_EQ(planned.checkedBytes(), 0);
    EXPECT_THAT(lines(), IsEmpty());
    plan({candidate("/b", caches)});
    EXPECT_EQ(lines().size(), 2U);
}

TEST_F(PlannedUninstallTest, NeverRemovesWhatBelongsToTheSystem) {
    plan({candidate("/a", executable)});
    EXPECT_TRUE(planned.isRemovable());
    atlas.kind = AppRecordKind::systemRisky;
    plan({candidate("/a", executable)});
    EXPECT_FALSE(planned.isRemovable());
}

TEST_F(PlannedUninstallTest, HasAnIconByTheType) {
    const auto seen = [](UninstallCandidate made, Files::ItemType type) {
        made.seen = Files::ItemInfo{.type = type};
        return made;
    };
    plan({candidate(atlas.bundlePath, executable), seen(candidate("/folder.x", caches), Files::ItemType::folder),
          seen(candidate("/file", caches), Files::ItemType::regular),
          seen(candidate("/link", caches), Files::ItemType::symbolicLink), candidate("a.pkg", receipts)});
    for (const auto category : {executable, caches, receipts}) planned.toggleSection(category);
    std::vector<QString> icons;
    for (const auto& row : planned.rows())
        if (row.kind == UninstallPlanRow::Kind::candidate) icons.push_back(row.iconName);
    EXPECT_THAT(icons, ElementsAre("apps", "folder", "file", "link", "signature"));
}

}  // namespace tarvik::test
