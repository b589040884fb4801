#include "Health/HealthWorld.h"
#include "Health/TrackedFilesChecker.h"
#include "Records/InstallsDB.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

class TrackedFilesCheck : public testing::Test {
protected:
    void track(int count) const {
        if (!fs::exists(database)) test::makeTrackingDatabase(database);
        test::askDatabase(database, "INSERT INTO installs (install_id, app_name) VALUES ('one', 'Foo.app');");
        for (int number = 1; number <= count; ++number)
            test::askDatabase(database, "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '" +
                                            file(number).native() + "');");
    }
    fs::path file(int number) const { return world.folder / "tracked" / std::to_string(number); }
    std::string detail() const {
        const auto issue = TrackedFilesChecker::check(world.host, link, world.appsOnDrive / "Foo.app");
        if (!issue) return "nothing";
        EXPECT_EQ(issue->kind, HealthIssue::Kind::missingTrackedFiles);
        EXPECT_EQ(issue->location, link);
        EXPECT_EQ(issue->target, world.appsOnDrive / "Foo.app");
        EXPECT_EQ(issue->sizeBytes, 0);
        return issue->detail;
    }
    std::string missing(int count) const {
        std::string text;
        for (int number = 1; number <= count; ++number) text += (number > 1 ? ", " : "") + file(number).native();
        return text;
    }

    const test::HealthWorld world;
    const fs::path database = InstallsDB::defaultPath(world.host);
    const fs::path link = world.moveApp("Foo.app");
};

}  // namespace

TEST_F(TrackedFilesCheck, FindsNothingWithoutADatabaseOrAnEntry) {
    EXPECT_EQ(detail(), "nothing");
    test::makeTrackingDatabase(database);
    EXPECT_EQ(detail(), "nothing");
    track(0);
    EXPECT_EQ(detail(), "nothing");
}

TEST_F(TrackedFilesCheck, FindsNothingWhereEverythingIsThere) {
    track(2);
    test::makeFile(file(1));
    test::makeFile(file(2));
    EXPECT_EQ(detail(), "nothing");
}

TEST_F(TrackedFilesCheck, NamesWhatIsMissing) {
    track(2);
    test::makeFile(file(2));
    EXPECT_EQ(detail(), "1/2 tracked files missing for Foo.app: " + missing(1));
    fs::remove(file(2));
    EXPECT_EQ(detail(), "2/2 tracked files missing for Foo.app: " + missing(2));
}

TEST_F(TrackedFilesCheck, NamesThreeOfManyAndCountsTheOthers) {
    track(3);
    EXPECT_EQ(detail(), "3/3 tracked files missing for Foo.app: " + missing(3));
    test::askDatabase(database, "INSERT INTO tracked_files (install_id, file_path) VALUES ('one', '/nowhere');");
    EXPECT_EQ(detail(), "4/4 tracked files missing for Foo.app: " + missing(3) + " (+1 more)");
}

TEST_F(TrackedFilesCheck, FindsNothingInADatabaseThatIsNone) {
    test::makeFile(database, "no database");
    EXPECT_EQ(detail(), "nothing");
}

}  // namespace tarvik
