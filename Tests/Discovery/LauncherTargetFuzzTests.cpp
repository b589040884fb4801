#include "Applications/AppClassifier.h"
#include "Discovery/AppScanner.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"
#include "Support/Bundles.h"
#include "Support/Mutator.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik {
namespace {

constexpr int rounds = 250;

/// Whatever stands in a launcher's target file, its target is something that exists, by a clean path, or nothing.
TEST(LauncherTargetFuzz, BrokenFilesNameWhatExistsOrNothing) {
    using namespace std::string_literals;
    const test::World world;
    const fs::path launcher = world.folder / "Applications/Editor.app";
    const fs::path target = world.drive / "ExternalTarvik/Apps/Editor.app";
    test::makeBundle(target);
    test::makeLauncher(launcher, target);
    const fs::path file = launcher / "Contents/Resources/ExternalAppTarget.txt";
    // Much white space, so that the changes often leave the path alone.
    const std::string good = std::string(100, ' ') + target.native() + std::string(100, '\n');

    test::Mutator mutator(31, {"\0"s, "\n", "\uFEFF", "\u2028", "/../", "/./", "//", "\xFF", "~/", "file://"});
    int found = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string text = mutator.mutated(good);
        test::makeFile(file, text);
        const auto stored = AppClassifier::readLauncherTarget(launcher);
        if (stored) {
            EXPECT_EQ(stored->native().find('\0'), std::string::npos) << round;
            EXPECT_EQ(Text::trimmed(stored->native()), stored->native()) << round;
        }
        const auto shim = AppScanner::launcherShimTarget(launcher);
        const auto entry = AppScanner::metadataEntry(world.host, launcher);
        EXPECT_EQ(entry.has_value(), shim.has_value()) << round;
        if (!shim) continue;
        ++found;
        EXPECT_TRUE(shim->is_absolute()) << round;
        EXPECT_EQ(Files::standardized(*shim), *shim) << round;
        EXPECT_TRUE(Files::exists(*shim)) << round;
        EXPECT_TRUE(entry->isAlreadySymlinked) << round;
    }
    EXPECT_GT(found, 5) << "some changes leave the target";
    EXPECT_LT(found, rounds);
}

}  // namespace
}  // namespace tarvik
