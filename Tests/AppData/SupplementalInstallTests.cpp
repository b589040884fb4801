#include "AppData/SupplementalInstall.h"
#include "Support/HostOf.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using test::hostOf;

struct Row {
    const char* path;
    bool matches;
};

TEST(SupplementalInstall, IsABundleInAnApplicationSupportFolder) {
    const Host host = hostOf("/", "/Users/ada");
    const Row rows[] = {
        {"/Users/ada/Library/Application Support/Acme/Tool.app", true},
        {"/Library/Application Support/Acme/Tool.app", true},
        {"/Volumes/Backup/Library/Application Support/Acme/Tool.app", true},
        {"/Users/ada/Library/Application Support", false},
        {"/Users/ada/Library/Application Supports/Tool.app", false},
        {"/Applications/Tool.app", false},
        {"/Applications/Library/Application Support/Tool.app", false},
        {"/Applications2/Library/Application Support/Tool.app", true},
        {"/System/Applications/Library/Application Support/Tool.app", false},
        {"/System/Applications2/Library/Application Support/Tool.app", false},
        {"/Users/ada/Applications/Library/Application Support/Tool.app", false},
        {"/Users/ada/Applications2/Library/Application Support/Tool.app", true},
        {"/Users/ada/Downloads/Tool.app", false},
        {"/Volumes/Backup/ExternalTarvik/Apps/Tool.app", false},
    };
    for (const Row& row : rows) EXPECT_EQ(SupplementalInstall::matches(host, row.path), row.matches) << row.path;
}

TEST(SupplementalInstall, IsJudgedBelowTheHostsRoot) {
    const fs::path root = "/Users/ada/Library/Application Support/practice";
    const Host host = hostOf(root, root / "Users/ben");
    EXPECT_FALSE(SupplementalInstall::matches(host, root / "Applications/Tool.app"));
    EXPECT_FALSE(SupplementalInstall::matches(host, root / "Volumes/Backup/Tool.app"));
    EXPECT_TRUE(
        SupplementalInstall::matches(host, root / "Users/ben/Library/Application Support/Acme/Tools/Helper.app"));
}

}  // namespace
}  // namespace tarvik
