#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Files/Files.h"
#include "Support/Mutator.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {
namespace {

using Bundles = std::set<fs::path>;

const std::vector<std::string> samples = {
    "/Applications/My Editor.app/Contents/MacOS/My Editor /Applications/My Editor.app/Contents/MacOS/My Editor -psn_0",
    "open open \"/Applications/One.app\" /Volumes/Backup/ExternalTarvik/Apps/Two.app --fresh",
    "sh /bin/sh /Applications/\u5199\u771F.app/Contents/Helpers/../x.app/Contents/MacOS/run\u00A0/B/\xC3.app"};

TEST(ProcessLinesFuzz, BrokenLinesNameStandardizedBundlesOrNothing) {
    test::Mutator mutator(
        21, {".app", "/", "\"", "/Contents/", " ", "\u2003", "\xE2\x80", "/../", "//", ".app/Contents", "\t"});
    std::vector<std::string> lines;
    for (int round = 0; round < 4'000; ++round) lines.push_back(mutator.mutated(samples[round % samples.size()]));

    Bundles together;
    for (const std::string& line : lines) {
        const Bundles found = RunningAppsDetector::bundlePathsIn({line});
        for (const fs::path& bundle : found) {
            EXPECT_TRUE(bundle.is_absolute()) << line;
            EXPECT_EQ(Files::standardized(bundle), bundle) << line;
            EXPECT_EQ(bundle.native().find('"'), std::string::npos) << line;
            // What steps back over its own end is still named by a text that ends in ".app".
            EXPECT_NE(line.find(".app"), std::string::npos) << line;
        }
        together.insert(found.begin(), found.end());
    }
    EXPECT_GT(together.size(), 500U);
    EXPECT_EQ(RunningAppsDetector::bundlePathsIn({lines.begin(), lines.end()}), together)
        << "lines know nothing of each other";
}

}  // namespace
}  // namespace tarvik
