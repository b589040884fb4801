#include "Platform/Files/Firmlinks.h"

#include <gtest/gtest.h>

namespace tarvik {

TEST(Firmlinks, LeadFromTheDataVolumeToTheUsualPath) {
    EXPECT_EQ(Firmlinks::shortForm("/System/Volumes/Data/Users"), "/Users");
    EXPECT_EQ(Firmlinks::shortForm("/System/Volumes/Data/Users/robin/Movies"), "/Users/robin/Movies");
    EXPECT_EQ(Firmlinks::shortForm("/System/Volumes/Data/Applications/Editor.app"), "/Applications/Editor.app");
    EXPECT_EQ(Firmlinks::shortForm("/System/Volumes/Data/usr/local/bin"), "/usr/local/bin");
    EXPECT_EQ(Firmlinks::shortForm("/System/Volumes/Data/private/var"), "/private/var");
}

TEST(Firmlinks, LeaveEveryOtherPath) {
    for (const char* path : {"/", "/Users/robin", "/System/Volumes/Data", "/System/Volumes/Data/Usersx",
                             "/System/Volumes/Data/home", "/System/Volumes/Data/usr/share", "/System/Volumes/VM",
                             "/Volumes/Data/Users", "/home/System/Volumes/Data/Users"})
        EXPECT_EQ(Firmlinks::shortForm(path), path);
}

TEST(Firmlinks, CountOnlyWhereBothFormsLeadToOneFolder) {
    // Nothing stands at the long form here, or, on a Mac, both are one.
    const fs::path missing = "/System/Volumes/Data/Users/nobody at all";
    const fs::path here = Firmlinks::shortFormHere(missing);
    EXPECT_TRUE(here == missing || fs::equivalent("/System/Volumes/Data/Users", "/Users"));
}

}  // namespace tarvik
