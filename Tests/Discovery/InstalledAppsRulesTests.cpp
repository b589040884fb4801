#include "Discovery/InstalledAppsScanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::Field;

constexpr std::chrono::system_clock::time_point now =
    std::chrono::system_clock::time_point(std::chrono::hours(490'000));
const fs::path applications = "/Applications";

AppRecord recordAt(const fs::path& path, const std::optional<std::string>& identifier = "com.acme.editor") {
    AppRecord record;
    record.id = path.native();
    record.bundlePath = path;
    record.displayName = path.stem();
    record.bundleIdentifier = identifier;
    return record;
}

AppRecord linkAt(const fs::path& path) {
    AppRecord record = recordAt(path);
    record.isSymlink = true;
    return record;
}

AppRecord launcherAt(const fs::path& path) {
    AppRecord record = recordAt(path);
    record.isTarvikLauncher = true;
    return record;
}

TEST(InstalledAppsRules, PreferAShortFileNameUnlessTheListHasALongerOne) {
    struct Row {
        std::optional<std::string> plist;
        std::string folder;
        std::string preferred;
    };
    const Row rows[] = {
        {std::nullopt, "Editor", "Editor"},
        {std::nullopt, " Editor ", " Editor "},
        {"", " Editor ", " Editor "},
        {"Acme Editor", "Editor", "Acme Editor"},
        {" Acme Editor\n", "Editor", "Acme Editor"},
        {"Edit", "Editor", "Editor"},
        {"Redact", "Editor", "Editor"},
        {"EDITOR", "Editor", "Editor"},
        {"EDITOR ", "Editor", "Editor"},
        {"Editor", " EDITOR\t", "EDITOR"},
        {"   ", "Ed", "Ed"},
        // Characters count, not bytes: five of each, then six against five.
        {"Größe", "Grobe", "Grobe"},
        {"Größen", "Grobe", "Größen"},
        {"日本語の名", "Notes", "Notes"},
        {"👨‍👩‍👧", "ab", "ab"},
        {"Straße Nord", "STRASSE NORD", "STRASSE NORD"},
        {"STRASSE NORD", "Straße Nord", "Straße Nord"},
        {"Acme Editor",
         "\xFF"
         "ed",
         "Acme Editor"},
        {"A",
         "\xFF"
         "ed",
         "\xFF"
         "ed"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(InstalledAppsScanner::preferredDisplayName(row.plist, row.folder), row.preferred)
            << row.plist.value_or("(none)") << " / " << row.folder;
}

TEST(InstalledAppsRules, ScoreEachConditionByItself) {
    struct Row {
        const char* condition;
        AppRecord record;
        int score;
    };
    AppRecord named = recordAt("/Volumes/Backup/Editor.app");
    AppRecord other = named.withDisplayName("editor");
    AppRecord old = other;
    old.modifiedAt = now - std::chrono::hours(24) * 365;
    AppRecord recent = other;
    recent.modifiedAt = *old.modifiedAt + std::chrono::seconds(1);
    AppRecord inApplications = recordAt("/Applications/Editor.app").withDisplayName("x");
    AppRecord beside = recordAt("/Applications2/Editor.app").withDisplayName("x");
    AppRecord best = recordAt("/Applications/Editor.app").withBundleSize(1);
    best.modifiedAt = now;
    AppRecord linkedLauncher = linkAt("/Volumes/Backup/Editor.app").withDisplayName("x");
    linkedLauncher.isTarvikLauncher = true;
    const Row rows[] = {
        {"nothing at all", linkedLauncher, 0},
        {"a link", linkAt("/Volumes/Backup/Editor.app").withDisplayName("x"), 8},
        {"a launcher", launcherAt("/Volumes/Backup/Editor.app").withDisplayName("x"), 4},
        {"a real bundle", other, 12},
        {"named like its file", named, 14},
        {"changed 365 days ago", old, 12},
        {"changed less than 365 days ago", recent, 13},
        {"measured", other.withBundleSize(1), 13},
        {"in the applications folder", inApplications, 14},
        {"in a folder beside it", beside, 12},
        {"everything", best, 18},
    };
    for (const Row& row : rows)
        EXPECT_EQ(InstalledAppsScanner::canonicalScore(row.record, applications, now), row.score) << row.condition;
}

std::vector<std::string> kept(std::vector<AppRecord> records) {
    std::vector<std::string> paths;
    for (const AppRecord& record : InstalledAppsScanner::dedupedByBundleId(std::move(records), applications, now))
        paths.push_back(record.id);
    return paths;
}

TEST(InstalledAppsRules, KeepTheBestOfEachIdentifier) {
    const char* const onDrive = "/Volumes/Backup/ExternalTarvik/Apps/Editor.app";
    EXPECT_THAT(kept({recordAt(onDrive), recordAt("/Applications/Editor.app")}),
                ElementsAre("/Applications/Editor.app"));
    EXPECT_THAT(kept({linkAt("/Applications/Editor.app"), recordAt(onDrive)}), ElementsAre(onDrive));
    EXPECT_THAT(kept({launcherAt("/Applications/Editor.app"), recordAt(onDrive)}), ElementsAre(onDrive));
    EXPECT_THAT(kept({launcherAt("/Applications/Editor.app"), linkAt("/Applications/Link.app")}),
                ElementsAre("/Applications/Link.app"));
}

TEST(InstalledAppsRules, KeepTheLauncherThatIsNamedLikeItsFile) {
    EXPECT_THAT(kept({launcherAt("/Applications/A.app").withDisplayName("Editor"), launcherAt("/Applications/B.app")}),
                ElementsAre("/Applications/B.app"));
}

TEST(InstalledAppsRules, KeepTheFirstOfEquals) {
    EXPECT_THAT(kept({recordAt("/Applications/B.app"), recordAt("/Applications/A.app")}),
                ElementsAre("/Applications/B.app"));
}

TEST(InstalledAppsRules, NeverMergeWhatHasNoIdentifier) {
    EXPECT_THAT(kept({recordAt("/Applications/Z.app", "com.acme.z"), recordAt("/Applications/Editor.app", std::nullopt),
                      recordAt("/Volumes/Editor.app", std::nullopt), recordAt("/a/Editor.app", ""),
                      recordAt("/b/Editor.app", ""), recordAt("/Applications/A.app", "com.acme.a")}),
                ElementsAre("/Applications/Editor.app", "/Volumes/Editor.app", "/a/Editor.app", "/b/Editor.app",
                            "/Applications/A.app", "/Applications/Z.app"));
}

TEST(InstalledAppsRules, TellIdentifiersApartByTheirExactText) {
    EXPECT_THAT(kept({recordAt("/a.app", "com.acme.Editor"), recordAt("/b.app", "com.acme.editor")}),
                testing::SizeIs(2));
}

}  // namespace
}  // namespace tarvik
