// What has reached a drive, and not only its cache, before the user is told that it is there.
#include "Backups/BackupPlan.h"
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Support/Tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarvik::test {

namespace {

using Lines = std::vector<std::string>;
using testing::ElementsAre;
using testing::HasSubstr;

class FlushJourney : public OnMacVolumes {
protected:
    void SetUp() override {
        OnMacVolumes::SetUp();
        if (!mac) return;
        letters = mac->atHome("Letters");
        makeFile(letters / "one.txt", "sun");
        makeFile(letters / "more/two.txt", "rain");
    }

    fs::path letters;
};

/// Where the last line is that contains the text; -1 without one.
std::ptrdiff_t lastOf(const Lines& lines, const std::string& text) {
    const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                    [&](const std::string& line) { return line.find(text) != std::string::npos; });
    return lines.rend() - found - 1;
}

/// What a backup did: "copy" for all that belongs to its copies, the record by the name that it has at last.
Lines storyOf(const Lines& journal, const std::string& folder) {
    Lines story;
    for (const std::string& line : journal) {
        const std::string act = line.substr(0, line.find(' '));
        if (act == "sync") continue;  // That reaches the cache of the drive.
        std::string told = "copy";
        if (line.find("backup.json") != std::string::npos) told = act + " record";
        if (line == "flush everything") told = line;
        if (line == "flush " + folder) told = "flush folder";
        if (story.empty() || story.back() != told) story.push_back(told);
    }
    return story;
}

}  // namespace

TEST_F(FlushJourney, BringsABackupToTheDriveBeforeItsRecordAndTheVolumeAfterIt) {
    const auto plan = BackupPlan::plan(mac->host, {letters}, mac->driveInfo(mac->extended));
    const auto backup = BackupPlan::run(mac->host, plan, {});
    EXPECT_THAT(storyOf(mac->extended.journal(), "TarvikBackups/" + backup.id),
                ElementsAre("copy", "flush everything", "write record", "flush record", "rename record", "flush folder",
                            "flush everything"));
}

TEST_F(FlushJourney, BringsAMovedFolderToTheDriveBeforeTheOriginalGoes) {
    ASSERT_EQ(mac->moveFolder(letters, mac->extended), "moved");
    const Lines journal = mac->extended.journal();
    const auto written = lastOf(journal, "write ");
    const auto named = lastOf(journal, "rename ExternalTarvik/Folders/Letters");
    EXPECT_GE(written, 0);
    EXPECT_GT(named, written);
    EXPECT_EQ(journal.back(), "flush everything");
    EXPECT_EQ(std::count(journal.begin() + written, journal.begin() + named, "flush everything"), 1)
        << "what is written has arrived before it gets its name";
}

TEST_F(FlushJourney, BringsAFolderThatComesBackToTheDiskBeforeTheDriveLosesIt) {
    ASSERT_EQ(mac->moveFolder(letters, mac->extended), "moved");
    ASSERT_EQ(mac->moveBack(letters), "back");
    const Lines disk = mac->disk.journal();
    const auto named = lastOf(disk, "rename Users/robin/Letters");
    EXPECT_GT(lastOf(disk, "flush everything"), named);
    EXPECT_THAT(mac->extended.journal().back(), HasSubstr("remove "));
}

TEST_F(FlushJourney, BringsTheRecordOfMovesToTheDisk) {
    ASSERT_EQ(mac->moveFolder(letters, mac->extended), "moved");
    const Lines disk = mac->disk.journal();
    const auto named = lastOf(disk, "health-manifest.json");
    ASSERT_GE(named, 0);
    EXPECT_THAT(Lines(disk.begin() + named, disk.end()), testing::Contains(HasSubstr("flush ")));
}

}  // namespace tarvik::test
