#include "Reports/ReportRecords.h"
#include "Reports/UninstallTSVFormatter.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

namespace TSV = UninstallTSVFormatter;

TEST(UninstallTSV, ListsApplications) {
    EXPECT_EQ(TSV::apps({}), "app\tkind\tid\tname\tpath\n");
    EXPECT_EQ(TSV::apps({test::reportedApp(), test::bareApp()}),
              "app\tkind\tid\tname\tpath\n"
              "app\tsymlink\tcom.acme.foo\tFoo\t/Applications/Foo.app\n"
              "app\tnormal\t-\tB\\\"1\"\t/B \"1\".app\n");
}

TEST(UninstallTSV, InspectsAnApplication) {
    EXPECT_EQ(TSV::inspection(test::reportedApp()),
              "inspect\t/Applications/Foo.app\nkind\tsymlink\nname\tFoo\nbundle-id\tcom.acme.foo\nversion\t1.2\n"
              "developer\t2026 Acme\nmac-app-store\ttrue\nlogin-items\tfalse\nsystem-extension\ttrue\nsymlink\ttrue\n"
              "tarvik-launcher\tfalse\nexternal-target\t/Volumes/T/Foo.app\n");
    EXPECT_EQ(TSV::inspection(test::bareApp()),
              "inspect\t/B \"1\".app\nkind\tnormal\nname\tB\\\"1\"\nbundle-id\t-\nversion\t-\ndeveloper\t-\n"
              "mac-app-store\tfalse\nlogin-items\tfalse\nsystem-extension\tfalse\nsymlink\tfalse\n"
              "tarvik-launcher\tfalse\nexternal-target\t-\n");
}

TEST(UninstallTSV, TellsAPlan) {
    EXPECT_EQ(TSV::plan(test::reportedPlan()),
              "plan\t/Applications/Foo.app\t5000000000\nwarning\tFirst.\nwarning\tSay \"yes\".\n"
              "candidate\texecutable\thigh\t5000000000\ttrue\t/Applications/Foo.app\n"
              "candidate\treceipts\tmedium\t0\tfalse\tcom.acme.foo\n");
    EXPECT_EQ(TSV::plan({.app = test::bareApp(), .candidates = {}, .warnings = {}}), "plan\t/B \"1\".app\t0\n");
}

TEST(UninstallTSV, ListsSessions) {
    AppUninstallSession rehearsal = test::reportedSession();
    rehearsal.movedItems.clear();
    rehearsal.dryRun = true;
    EXPECT_EQ(TSV::sessions({}), "session\tid\tapp\tdry\titems\n");
    EXPECT_EQ(TSV::sessions({test::reportedSession(), rehearsal}),
              "session\tid\tapp\tdry\titems\n"
              "session\t20261115_174543\t/Applications/Foo.app\tfalse\t2\n"
              "session\t20261115_174543\t/Applications/Foo.app\ttrue\t0\n");
}

TEST(UninstallTSV, WritesFieldsAsTheyAre) {
    AppRecord app = test::bareApp();
    app.displayName = "Tab\tand\nline \xFF";
    EXPECT_EQ(TSV::apps({app}), "app\tkind\tid\tname\tpath\napp\tnormal\t-\tTab\tand\nline \xFF\t/B \"1\".app\n");
}

}  // namespace
}  // namespace tarvik
