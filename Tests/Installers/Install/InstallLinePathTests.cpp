#include "Installers/Install/InstallLinePath.h"
#include "Support/FailureOf.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik::test {

TEST(InstallLinePath, RefusesNamesThatWouldBreakALine) {
    EXPECT_EQ(failureOf([] { InstallLinePath::require("/a/Safari.app\tX.app"); }),
              "Safari.app?X.app has a name that cannot be used.");
    EXPECT_EQ(failureOf([] { InstallLinePath::require("/a/b\nc/X.app"); }), "b?c has a name that cannot be used.");
    for (const char* name : {"/a\r", "/\x01", "/a\x7F/b", "/a\xE2\x80\xA8/b", "/a\xC2\x85"})
        EXPECT_NE(failureOf([&] { InstallLinePath::require(name); }), "done") << name;
}

TEST(InstallLinePath, TakesAllOtherNames) {
    for (const char* name : {"/", "/Applications/Caf\xC3\xA9 2.app", "/a/\xFF.pkg", "/a/-> b"})
        EXPECT_NO_THROW(InstallLinePath::require(name)) << name;
}

}  // namespace tarvik::test
