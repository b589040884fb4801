#include "StandIns/StandInRun.h"
#include "StandIns/codesign/SignedApp.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/xattr.h>

namespace tarvik::test {
namespace {

bool attach(const fs::path& item, const char* attribute) {
    return ::setxattr(item.c_str(), attribute, "x", 1, 0) == 0;
}

TEST(CodesignDetritus, AStrictCheckRefusesWhatNoSealCovers) {
    for (const char* name : {"", "Contents/MacOS/Editor", "Contents/Resources/abc.txt"}) {
        const SignedApp app;
        if (!attach(app / name, "user.com.apple.quarantine")) GTEST_SKIP() << std::strerror(errno);
        EXPECT_EQ(app.flaw(), "valid");
        ASSERT_TRUE(attach(app / name, "user.com.apple.FinderInfo"));
        EXPECT_EQ(app.flaw(), "resource fork, Finder information, or similar detritus not allowed\n") << name;
        EXPECT_EQ(app.sign().status, 1);
        EXPECT_EQ(runStandIn("codesign", {"--verify", "--deep", app.path}).status, 0);
    }
}

}  // namespace
}  // namespace tarvik::test
