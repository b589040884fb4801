#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(LauncherProgram, IsSmall) {
    if (!Files::exists("/usr/bin/strip")) TARVIK_SKIP_BECAUSE("strip is not installed");
    const test::TemporaryFolder folder;
    const fs::path stripped = folder / "stripped";
    const auto result = CommandRunner::run(
        "/usr/bin/strip", {"-o", stripped.native(), test::programOfThisBuild("external-app-launcher").native()});
    ASSERT_EQ(result.status, 0) << result.stderr;
    EXPECT_LT(fs::file_size(stripped), 200'000U);
}

}  // namespace tarvik
