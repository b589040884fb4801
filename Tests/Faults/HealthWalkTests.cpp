// What the health check asks of the system while it walks through data, and what it makes of a link that cannot be
// read: told by a tracer of its system calls.
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::test {

namespace {

/// A machine in a folder with data, and the command that checks it.
class HealthWalks : public testing::Test {
protected:
    void SetUp() override {
        if (!Files::exists("/usr/bin/strace")) TARVIK_SKIP_BECAUSE("strace is not installed");
        makeFolder(root / "Applications");
        makeFolder(library);
    }

    /// Runs the check. @returns what it prints.
    std::string check(std::vector<std::string> tracing) const {
        std::vector<std::string> words = {"-f", "-y", "-o", (folder / "log").native()};
        words.insert(words.end(), tracing.begin(), tracing.end());
        words.insert(words.end(), {programOfThisBuild("tarvik").native(), "--root", root.native(), "--home",
                                   home.native(), "--format", "tsv", "health"});
        return CommandRunner::run("/usr/bin/strace", words).stdout;
    }
    /// The calls of the last run that name `text`.
    std::vector<std::string> callsWith(std::string_view text) const {
        std::vector<std::string> found;
        const std::string log = contentOf(folder / "log");
        for (const auto line : Text::lines(log))
            if (line.find(text) != std::string_view::npos) found.emplace_back(line);
        return found;
    }

    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    const fs::path home = root / "Users/ada";
    const fs::path library = home / "Library";
};

}  // namespace

TEST_F(HealthWalks, OpenNothingBelowTheThirdLevelAndAskOfLinksAlone) {
    for (const char* vendor : {"one", "two"}) {
        const fs::path data = library / "Application Support" / vendor;
        for (const char* file : {"at-2", "caches/at-3", "caches/deep/at-4", "caches/deep/deeper/at-5"})
            makeFile(data / file);
    }
    makeLink(library / "Application Support/one/caches/link", "../at-the-end");
    check({"-e", "trace=%file,%desc"});
    EXPECT_THAT(callsWith("caches"), testing::Not(testing::IsEmpty()));
    for (const char* item : {"at-2", "at-3", "at-4", "deep\"", "deep>", "deeper"})
        EXPECT_THAT(callsWith(item), testing::IsEmpty()) << item;
    // The listing tells what is a link: only that is asked where it leads, and whether anything is there.
    EXPECT_THAT(callsWith("caches/link"), testing::SizeIs(1));
    EXPECT_THAT(callsWith("caches/../at-the-end"), testing::SizeIs(1));
}

TEST_F(HealthWalks, TakeAFewCallsForAFolderThatIsOpenedHoweverManyThereAre) {
    TARVIK_NEEDS_MEMORY_VOLUMES();
    constexpr std::size_t each = 60;
    constexpr std::size_t opened = 2 + each;
    makeFolder(library / "Logs");
    const auto data = RealVolume::memory(library / "Logs", megabyte);
    for (std::size_t first = 0; first < each; ++first)
        for (std::size_t second = 0; second < each; ++second)
            makeFolder(data / std::to_string(first) / ("third" + std::to_string(second)));
    makeLink(data / "59/last", "/nowhere");
    EXPECT_THAT(check({"-e", "trace=%file,%desc"}), testing::HasSubstr("/59/last\t"));
    EXPECT_THAT(callsWith("third"), testing::IsEmpty());
    // One each to open it and to close it, two to list it, and what it takes to know it again.
    EXPECT_THAT(callsWith("/Logs"), testing::SizeIs(testing::AllOf(testing::Gt(opened), testing::Le(6 * opened))));
}

TEST_F(HealthWalks, TellOfALinkThatCannotBeRead) {
    const fs::path file = library / "Preferences/x.plist";
    makeLink(file, "/elsewhere");
    EXPECT_THAT(check({"-e", "trace=readlink,readlinkat"}), testing::HasSubstr("\t/elsewhere\t"));
    const std::string answer = check({"-P", file.native(), "-e", "inject=readlink,readlinkat:error=EIO"});
    EXPECT_THAT(callsWith("(INJECTED)"), testing::Not(testing::IsEmpty()));
    EXPECT_THAT(answer, testing::HasSubstr("unsafePrefsPlist"));
    EXPECT_THAT(answer, testing::Not(testing::HasSubstr("elsewhere")));
}

}  // namespace tarvik::test
