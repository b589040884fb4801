#include "AppData/CategorizedPaths.h"
#include "AppData/DataPathCategory.h"
#include "Applications/AppEntry.h"

#include <gtest/gtest.h>

#include <utility>

namespace tarvik {
namespace {

using enum DataPathCategory;

TEST(DataPathCategory, HasAnOrderATextARankAndATooltip) {
    struct Case {
        DataPathCategory category;
        const char* text;
        int displayOrder;
        const char* tooltip;
    };
    const std::vector<Case> cases = {
        {applicationSupport, "Application Support", 0,
         "User-specific application data \u2014 settings, projects, plugin data."},
        {caches, "Caches", 3, "Disposable cached files. Safe to remove; will be regenerated."},
        {preferences, "Preferences", 7, "App preferences (.plist files). Removing resets settings."},
        {logs, "Logs", 8, "App log files. Safe to remove."},
        {httpStorages, "HTTPStorages", 4, "Cookies and HTTP cache for embedded web views."},
        {savedState, "Saved State", 6, "Window state restoration data."},
        {containers, "Containers", 1, "Sandbox container \u2014 must stay on internal disk."},
        {groupContainers, "Group Containers", 2, "Shared sandbox data between related apps \u2014 internal only."},
        {applicationScripts, "Application Scripts", 10, "Sandbox-managed scripts \u2014 internal only."},
        {launchAgents, "Launch Agents", 11, "Background helpers that auto-launch."},
        {launchDaemons, "Launch Daemons", 12, "System-wide background daemons."},
        {webKit, "WebKit", 5, "WebKit profile data."},
        {cookies, "Cookies", 9, "Browser cookie data."},
        {dockIcon, "Dock Icon", 13, "Application bundle."},
        {other, "Other", 99, "Miscellaneous app-related files."},
    };
    ASSERT_EQ(allDataPathCategories.size(), cases.size());
    for (std::size_t index = 0; index < cases.size(); ++index) {
        const Case& each = cases[index];
        EXPECT_EQ(allDataPathCategories[index], each.category) << each.text;
        EXPECT_EQ(static_cast<std::size_t>(each.category), index) << each.text;
        EXPECT_EQ(textOf(each.category), each.text);
        EXPECT_EQ(displayOrderOf(each.category), each.displayOrder) << each.text;
        EXPECT_EQ(tooltipOf(each.category), each.tooltip);
    }
}

TEST(DataPathCategory, FollowsFromThePath) {
    for (const auto& [path, category] : std::vector<std::pair<const char*, DataPathCategory>>{
             {"/Users/ada/Library/Application Support/Foo", applicationSupport},
             {"/Library/Application Support/Foo", applicationSupport},
             {"/Users/ada/Library/Application Support/Foo/Foo.app", applicationSupport},
             {"/Users/ada/Library/Application Support/Foo/Library/Caches", applicationSupport},
             {"/Users/ada/Library/Group Containers/g.foo", groupContainers},
             {"/Users/ada/Library/Containers/com.acme.foo", containers},
             {"/Users/ada/Library/Containers/com.acme.foo/Data/Library/Caches", containers},
             {"/Users/ada/Library/Containers/foo/Data/Library/Application Support/Foo", applicationSupport},
             {"/Users/ada/Library/Application Scripts/com.acme.foo", applicationScripts},
             {"/Users/ada/Library/HTTPStorages/com.acme.foo", httpStorages},
             {"/Users/ada/Library/WebKit/com.acme.foo", webKit},
             {"/Users/ada/Library/Saved Application State/Foo.savedState", savedState},
             {"/Users/ada/Library/Caches/Foo", caches},
             {"/Library/Logs/Foo", logs},
             {"/Users/ada/Library/Cookies/Foo.binarycookies", cookies},
             {"/Users/ada/Library/Preferences/com.acme.foo.plist", preferences},
             {"/Users/ada/com.acme.foo.plist", other},
             {"/Library/LaunchAgents/com.acme.foo.plist", launchAgents},
             {"/Library/LaunchDaemons/com.acme.foo.plist", launchDaemons},
             {"/Volumes/T/ExternalTarvik/Data/Library/Caches/Foo", caches},
             {"/Library/CachesOfFoo", caches},
             {"/MyLibrary/Caches/Foo", other},
             {"/library/caches/Foo", other},
             {"/Applications/Foo.app", dockIcon},
             {"/Applications/Foo.app/Contents", other},
             {"/Applications/Foo.APP", other},
             {"/Applications/Fooapp", other},
             {"/Users/ada/.foo", other},
             {"/Users/ada/Library", other},
             {"", other},
         })
        EXPECT_EQ(textOf(dataPathCategoryOf(path)), textOf(category)) << path;
}

TEST(CategorizedPaths, AreSortedByCategoryAndThenBySize) {
    const auto entry = AppEntry().withSizes(0, {{"/elsewhere", 900},
                                                {"/Library/Caches/a", 1},
                                                {"/Library/Caches/b", 5},
                                                {"/Library/Preferences/p.plist", 2},
                                                {"/Library/Caches/c", 5},
                                                {"/Library/Application Support/Foo", 0},
                                                {"/Library/Containers/Foo", 3}});
    const std::vector<CategorizedPaths> expected = {
        {applicationSupport, {{"/Library/Application Support/Foo", 0}}},
        {containers, {{"/Library/Containers/Foo", 3}}},
        {caches, {{"/Library/Caches/b", 5}, {"/Library/Caches/c", 5}, {"/Library/Caches/a", 1}}},
        {preferences, {{"/Library/Preferences/p.plist", 2}}},
        {other, {{"/elsewhere", 900}}},
    };
    EXPECT_EQ(categorizedPaths(entry), expected);
}

TEST(CategorizedPaths, AreNoneWithoutData) {
    EXPECT_TRUE(categorizedPaths(AppEntry()).empty());
    EXPECT_EQ(AppEntry().dominantDataPath(), std::nullopt);
}

TEST(CategorizedPaths, SumUpTheirItems) {
    const CategorizedPaths one = {caches, {{"/a", 4}}};
    const CategorizedPaths two = {caches, {{"/a", 4}, {"/b", 3}}};
    EXPECT_EQ(one.total(), 4);
    EXPECT_EQ(two.total(), 7);
    EXPECT_EQ(one.fileFolderSummary(), "1 item");
    EXPECT_EQ(two.fileFolderSummary(), "2 items");
    EXPECT_EQ(CategorizedPaths().fileFolderSummary(), "0 items");
    EXPECT_EQ(CategorizedPaths().total(), 0);
}

}  // namespace
}  // namespace tarvik
