// What a launcher asks a Mac for. The words are made without a Mac's help, so they are looked at everywhere.
#include "Launcher/macOS/OpenCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace launcher {

using testing::ElementsAre;

TEST(OpenCommand, OpensAnApplicationAlone) {
    EXPECT_THAT(OpenCommand::words("/Volumes/T/A b.app", {}, {}), ElementsAre("/usr/bin/open", "/Volumes/T/A b.app"));
}

TEST(OpenCommand, OpensDocumentsWithTheApplication) {
    EXPECT_THAT(OpenCommand::words("/T/A.app", {"/Users/ada/a letter", "mailto:ada@example.org"}, {}),
                ElementsAre("/usr/bin/open", "-a", "/T/A.app", "/Users/ada/a letter", "mailto:ada@example.org"));
}

TEST(OpenCommand, PassesArgumentsOnButNotWhatTheFinderAdds) {
    EXPECT_THAT(OpenCommand::words("/T/A.app", {}, {"-psn_0_12345"}), ElementsAre("/usr/bin/open", "/T/A.app"));
    EXPECT_THAT(OpenCommand::words("/T/A.app", {}, {"-psn_0_1", "--new", "", "--args"}),
                ElementsAre("/usr/bin/open", "/T/A.app", "--args", "--new", "", "--args"));
    EXPECT_THAT(OpenCommand::words("/T/A.app", {"/a"}, {"-x"}),
                ElementsAre("/usr/bin/open", "-a", "/T/A.app", "/a", "--args", "-x"));
}

}  // namespace launcher
