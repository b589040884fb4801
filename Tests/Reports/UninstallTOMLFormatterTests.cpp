#include "Platform/Processes/CommandRunner.h"
#include "Reports/ReportRecords.h"
#include "Reports/UninstallTOMLFormatter.h"
#include "Support/OtherReaders.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

namespace TOML = UninstallTOMLFormatter;

TEST(UninstallTOML, ListsApplications) {
    EXPECT_EQ(TOML::apps({}), "\n");
    EXPECT_EQ(TOML::apps({test::reportedApp(), test::bareApp()}), R"([[apps]]
name = "Foo"
path = "/Applications/Foo.app"
kind = "symlink"
bundleId = "com.acme.foo"
[[apps]]
name = "B\\\"1\""
path = "/B \"1\".app"
kind = "normal"
bundleId = ""
)");
}

TEST(UninstallTOML, InspectsAnApplication) {
    EXPECT_EQ(TOML::inspection(test::reportedApp()), R"(name = "Foo"
path = "/Applications/Foo.app"
kind = "symlink"
bundleId = "com.acme.foo"
version = "1.2"
developer = "2026 Acme"
macAppStore = true
loginItems = false
systemExtension = true
symlink = true
tarvikLauncher = false
externalTarget = "/Volumes/T/Foo.app"
)");
    EXPECT_EQ(TOML::inspection(test::bareApp()), R"(name = "B\\\"1\""
path = "/B \"1\".app"
kind = "normal"
bundleId = ""
version = ""
developer = ""
macAppStore = false
loginItems = false
systemExtension = false
symlink = false
tarvikLauncher = false
externalTarget = ""
)");
}

constexpr const char* planText = R"(appPath = "/Applications/Foo.app"
totalBytes = 5000000000
selectedBytes = 7
warnings = ["First.", "Say \"yes\"."]
[[candidates]]
path = "/Applications/Foo.app"
category = "executable"
confidence = "high"
sizeBytes = 5000000000
defaultSelected = true
reason = "App bundle symlink"
privileged = false
[[candidates]]
path = "com.acme.foo"
category = "receipts"
confidence = "medium"
sizeBytes = 0
defaultSelected = false
reason = "pkgutil receipt for bundle id"
privileged = true
)";

TEST(UninstallTOML, TellsAPlan) {
    EXPECT_EQ(TOML::plan(test::reportedPlan()), planText);
    EXPECT_EQ(TOML::plan({.app = test::bareApp(), .candidates = {}, .warnings = {}}), R"(appPath = "/B \"1\".app"
totalBytes = 0
selectedBytes = 0
warnings = []
)");
}

TEST(UninstallTOML, TellsASession) {
    EXPECT_EQ(TOML::session(test::reportedSession()), R"(id = "20261115_174543"
appPath = "/Applications/Foo.app"
appName = "Foo"
bundleId = "com.acme.foo"
dryRun = false
forgottenReceipts = ["com.acme.foo", "com.acme.bar"]
[[items]]
originalPath = "/Applications/Foo.app"
category = "executable"
sizeBytes = 7
succeeded = true
trashedTo = "/Users/ada/.Trash/Foo.app"
[[items]]
originalPath = "/Library/F"
category = "applicationSupport"
sizeBytes = 0
succeeded = false
stashedTo = "/Library/.TarvikTrash"
)");
    AppUninstallSession bare = test::reportedSession();
    bare.bundleIdentifier.reset();
    bare.forgottenReceipts.clear();
    bare.movedItems.clear();
    bare.dryRun = true;
    EXPECT_EQ(TOML::session(bare), R"(id = "20261115_174543"
appPath = "/Applications/Foo.app"
appName = "Foo"
bundleId = ""
dryRun = true
forgottenReceipts = []
)");
}

TEST(UninstallTOML, IsReadByOthers) {
    if (!CommandRunner::run("/usr/bin/python3", {"-c", "import tomllib"}).succeeded())
        TARVIK_SKIP_BECAUSE("This system's python3 reads no TOML: it has none, or is older than 3.11.");
    const test::TemporaryFolder folder;
    const auto read = [&](const std::string& text) {
        test::makeFile(folder / "report.toml", text);
        return test::OtherReaders::python(
            "import json, sys, tomllib\n"
            "print(json.dumps(tomllib.load(open(sys.argv[1], 'rb'))))",
            folder / "report.toml");
    };
    EXPECT_EQ(read(TOML::apps({})), "{}\n");
    EXPECT_EQ(read(TOML::apps({test::bareApp()})),
              R"({"apps": [{"name": "B\\\"1\"", "path": "/B \"1\".app", "kind": "normal", "bundleId": ""}]})"
              "\n");
    EXPECT_EQ(read(TOML::plan(test::reportedPlan())),
              R"({"appPath": "/Applications/Foo.app", "totalBytes": 5000000000, "selectedBytes": 7, )"
              R"("warnings": ["First.", "Say \"yes\"."], "candidates": [{"path": "/Applications/Foo.app", )"
              R"("category": "executable", "confidence": "high", "sizeBytes": 5000000000, "defaultSelected": true, )"
              R"("reason": "App bundle symlink", "privileged": false}, {"path": "com.acme.foo", )"
              R"("category": "receipts", "confidence": "medium", "sizeBytes": 0, "defaultSelected": false, )"
              R"("reason": "pkgutil receipt for bundle id", "privileged": true}]})"
              "\n");
    EXPECT_NE(read(TOML::inspection(test::reportedApp())).find("\"externalTarget\": \"/Volumes/T/Foo.app\""),
              std::string::npos);
    EXPECT_NE(read(TOML::session(test::reportedSession())).find("\"stashedTo\": \"/Library/.TarvikTrash\""),
              std::string::npos);
}

}  // namespace
}  // namespace tarvik
