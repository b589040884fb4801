// What must be on a drive before an act counts as done, told by the order of the program's system calls.
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::test {

namespace {

constexpr const char* tracer = "/usr/bin/strace";

/// A machine in a folder with a drive, and the command that works on it.
class Flushes : public testing::Test {
protected:
    void SetUp() override {
        if (!Files::exists(tracer)) TARVIK_SKIP_BECAUSE("strace is not installed");
        makeFile(music / "song", "la la");
        makeFolder(drive);
    }

    /// Runs the command and notes its renames and flushes in their order.
    void run(const std::vector<std::string>& arguments) {
        const fs::path log = folder / "log";
        std::vector<std::string> words = {"-f",     "-y",
                                          "-o",     log,
                                          "-e",     "trace=rename,renameat2,fsync,syncfs",
                                          "--",     programOfThisBuild("tarvik"),
                                          "--root", root,
                                          "--yes"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const auto result = CommandRunner::run(tracer, words);
        ASSERT_EQ(result.status, 0) << result.stderr;
        const std::string text = contentOf(log);
        for (const auto line : Text::lines(text)) calls.emplace_back(line);
    }

    /// The place of the last call of that name which names the path; -1 without one.
    int lastOf(const std::string& name, const std::string& path) const {
        int place = -1;
        for (std::size_t index = 0; index < calls.size(); ++index)
            if (calls[index].find(name + "(") != std::string::npos && calls[index].find(path) != std::string::npos)
                place = static_cast<int>(index);
        return place;
    }

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path music = root / "Users/ada/Music";
    const fs::path drive = root / "Volumes/Drive";
    std::vector<std::string> calls;
};

std::string opened(const fs::path& path) {
    return "<" + path.native() + ">";
}

}  // namespace

TEST_F(Flushes, OfABackupComeAfterItsRecordHasItsName) {
    run({"backup", "create", music, "--drive", "Drive"});
    const fs::path backup = drive / "TarvikBackups" / Files::names(drive / "TarvikBackups").front();
    const fs::path record = backup / "backup.json";
    const int content = lastOf("fsync", record);
    const int name = lastOf("rename", "\"" + record.native() + "\"");
    EXPECT_GE(content, 0);
    EXPECT_GT(name, content);
    EXPECT_GT(lastOf("fsync", opened(backup)), name) << "the folder that holds the name";
    EXPECT_GT(lastOf("syncfs", opened(backup)), name) << "the volume, with the folders above";
}

TEST_F(Flushes, OfAMovedFolderComeAfterItsCopyHasItsName) {
    run({"move", "folder", music, "--drive", "Drive"});
    const fs::path moved = drive / "ExternalTarvik/Folders/Music";
    const int name = lastOf("renameat2", "\"" + moved.native() + "\"");
    EXPECT_GE(name, 0);
    EXPECT_GT(lastOf("syncfs", opened(moved.parent_path())), name);
}

}  // namespace tarvik::test
