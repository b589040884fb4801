#include "CommandLine/CommandWorld.h"
#include "CommandLine/Lines.h"
#include "Installers/Options/InstallerOptionLoader.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(InstalledProgram, FindsWhatCameWithItUnderShare) {
    const test::TemporaryFolder prefix;
    fs::create_directories(prefix / "libexec/tarvik");
    fs::create_directories(prefix / "bin");
    fs::create_directories(prefix / "share/tarvik");
    fs::copy_file(test::CommandWorld().command, prefix / "libexec/tarvik/tarvik");
    fs::create_symlink("../libexec/tarvik/tarvik", prefix / "bin/tarvik");
    const auto options = [&] {
        return test::linesOf(test::runProgram(prefix / "bin/tarvik", {"install", "options", "--format", "tsv"}).output);
    };
    EXPECT_EQ(options(), std::vector<std::string>{""});
    fs::copy(InstallerOptionLoader::builtInRoot(), prefix / "share/tarvik/InstallerOptions");
    EXPECT_GE(options().size(), 4U);
}

}  // namespace tarvik
