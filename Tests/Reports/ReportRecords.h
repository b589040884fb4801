#pragma once

#include "Applications/AppRecord.h"
#include "Uninstall/AppUninstallPlan.h"
#include "UninstallRun/AppUninstallSession.h"

namespace tarvik::test {

/// An application of which everything is known.
inline AppRecord reportedApp() {
    return {.id = "/Applications/Foo.app",
            .bundlePath = "/Applications/Foo.app",
            .displayName = "Foo",
            .bundleIdentifier = "com.acme.foo",
            .version = "1.2",
            .executableName = "foo",
            .developer = "2026 Acme",
            .kind = AppRecordKind::symlink,
            .isSymlink = true,
            .symlinkTarget = "/Volumes/T/Foo.app",
            .isMacAppStore = true,
            .hasLoginItems = false,
            .hasSystemExtension = true,
            .isTarvikLauncher = false,
            .externalTargetPath = "/Volumes/T/Foo.app"};
}

/// One of which nothing is, with a name that wants to be quoted.
inline AppRecord bareApp() {
    return {.id = "/B.app", .bundlePath = "/B \"1\".app", .displayName = "B\\\"1\""};
}

inline AppUninstallPlan reportedPlan() {
    return {.app = reportedApp(),
            .candidates = {{.path = "/Applications/Foo.app",
                            .category = UninstallCategory::executable,
                            .sizeBytes = 5'000'000'000,
                            .confidence = UninstallConfidence::high,
                            .reason = "App bundle symlink",
                            .defaultSelected = true,
                            .isSymlink = true},
                           {.path = "com.acme.foo",
                            .category = UninstallCategory::receipts,
                            .confidence = UninstallConfidence::medium,
                            .reason = "pkgutil receipt for bundle id",
                            .isPrivileged = true}},
            .warnings = {"First.", "Say \"yes\"."},
            .totalBytes = 5'000'000'000,
            .selectedBytes = 7};
}

inline AppUninstallSession reportedSession() {
    using Category = UninstallCategory;
    return {.id = "20261115_174543",
            .appPath = "/Applications/Foo.app",
            .appName = "Foo",
            .bundleIdentifier = "com.acme.foo",
            .createdAt = {},
            .movedItems = {{.originalPath = "/Applications/Foo.app",
                            .category = Category::executable,
                            .sizeBytes = 7,
                            .trashedTo = "/Users/ada/.Trash/Foo.app",
                            .succeeded = true},
                           {.originalPath = "/Library/F",
                            .category = Category::applicationSupport,
                            .stashedTo = "/Library/.TarvikTrash",
                            .succeeded = false,
                            .error = "It is in use."}},
            .forgottenReceipts = {"com.acme.foo", "com.acme.bar"},
            .dryRun = false};
}

}  // namespace tarvik::test
