#include "Installers/Tracking/ChangesMerger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const FileSnapshot atFirst{PathSet({"/a", "/gone"})};
const FileSnapshot atLast{PathSet({"/a", "/new", "/new/file"})};

TEST(ChangesMerger, JoinsAllThatWasSeenOfAPackage) {
    EXPECT_THAT(ChangesMerger::merge(atFirst, atLast,
                                     {"installed-app\t/Applications/L.app\t/Volumes/D/L.app", "installed-pkg\t/x.pkg"},
                                     {"/passing", "/new", "/gone"}),
                ElementsAre("/Applications/L.app", "/Volumes/D/L.app", "/gone", "/new", "/new/file", "/passing"));
}

TEST(ChangesMerger, TakesTheComparisonAloneWithoutLiveEvents) {
    EXPECT_THAT(ChangesMerger::merge(atFirst, atLast, {"installed-pkg\t"}, {}), ElementsAre("/new", "/new/file"));
}

TEST(ChangesMerger, TakesOnlyWhatTheActionsNameWithoutAPackage) {
    EXPECT_THAT(
        ChangesMerger::merge(atFirst, atLast, {"installed-app\t/b\t/a\tmore", "ran-script\t/s.sh"}, {"/passing"}),
        ElementsAre("/a", "/b"));
    EXPECT_THAT(ChangesMerger::merge(atFirst, atLast, {"ran-script\t/s.sh"}, {"/passing"}), IsEmpty());
    for (const auto* line : {"installed-pkg", "installed-pkg /x.pkg", " installed-pkg\t/x.pkg", "installed-pkgs\t/x"})
        EXPECT_THAT(ChangesMerger::merge(atFirst, atLast, {line}, {"/passing"}), IsEmpty()) << line;
}

TEST(ChangesMerger, TakesNothingFromALineThatIsTooShort) {
    for (const auto* line : {"installed-app\tx", "installed-app\tx\t", "installed-app\t\tx", "installed-app", "",
                             "\t\t", "installed-apps\ta\tb", "reuse-app\ta\tb"})
        EXPECT_THAT(ChangesMerger::merge({}, {}, {line}, {}), IsEmpty()) << line;
}

TEST(ChangesMerger, PassesOverEmptyFields) {
    EXPECT_THAT(ChangesMerger::merge({}, {}, {"\tinstalled-app\t\t/a\t\t/b"}, {}), ElementsAre("/a", "/b"));
}

TEST(ChangesMerger, NamesEachPathOnce) {
    EXPECT_THAT(ChangesMerger::merge({}, {}, {"installed-app\t/a\t/b", "installed-app\t/b\t/a"}, {}),
                ElementsAre("/a", "/b"));
}

}  // namespace
}  // namespace tarvik
