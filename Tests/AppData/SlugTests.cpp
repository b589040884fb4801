#include "AppData/DotfileEntries.h"
#include "AppData/NodeCliCacheEntries.h"
#include "AppData/Slug.h"
#include "AppData/SlugDataEligibility.h"
#include "AppData/SlugDataPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Slug, IsTheFirstNameThatIsThere) {
    struct Row {
        AppIdentity identity;
        std::string slug;
    };
    const Row rows[] = {
        {{"/Applications/Some Editor.app", "Display", "com.acme.editor", "EditorMain"}, "editormain"},
        {{"/Applications/Some Editor.app", "Display", std::nullopt, std::nullopt}, "some editor"},
        {{"/Applications/Some Editor.app", "Display", std::nullopt, ""}, "some editor"},
        {{"/Applications/Editor.2.app", "Display", std::nullopt, std::nullopt}, "editor.2"},
        {{"", "My Display", std::nullopt, ""}, "my display"},
        {{"/Applications/GRÖẞE.app", "Display", std::nullopt, std::nullopt}, "größe"},
        {{"/Applications/Bad\xFF"
          "Name.app",
          "Display", std::nullopt, std::nullopt},
         "bad\xFF"
         "name"},
    };
    for (const Row& row : rows) EXPECT_EQ(Slug::derive(row.identity), row.slug);
}

TEST(Slug, NamesAnApplicationThatCameWithAnother) {
    AppRecord record;
    record.bundlePath = "/Users/ada/Library/Application Support/Acme/Tools/Helper.app";
    record.displayName = "Acme Helper";
    EXPECT_EQ(Slug::supplementalDisplayName(record), "helper");
    record.executableName = "AcmeHelper";
    EXPECT_EQ(Slug::supplementalDisplayName(record), "acmehelper");
}

TEST(DotfileEntries, AreFiveNamesInTheHome) {
    EXPECT_THAT(DotfileEntries::relativeNames("Code"),
                ElementsAre(".code", ".code.json", ".code.json.backup", ".coderc", ".code.log"));
    EXPECT_THAT(DotfileEntries::paths("/Users/ada", "Code"),
                ElementsAre("/Users/ada/.code", "/Users/ada/.code.json", "/Users/ada/.code.json.backup",
                            "/Users/ada/.coderc", "/Users/ada/.code.log"));
}

TEST(NodeCliCacheEntries, AreThreeFoldersInTheCaches) {
    EXPECT_THAT(NodeCliCacheEntries::folderNames("Code"), ElementsAre("code-cli-nodejs", "code-cli", "code-nodejs"));
    EXPECT_THAT(NodeCliCacheEntries::paths("/Users/ada", "Code"),
                ElementsAre("/Users/ada/Library/Caches/code-cli-nodejs", "/Users/ada/Library/Caches/code-cli",
                            "/Users/ada/Library/Caches/code-nodejs"));
}

TEST(SlugDataPaths, AreTheDotfilesAndThenTheCaches) {
    EXPECT_THAT(SlugDataPaths::all("/h", "x"),
                ElementsAre("/h/.x", "/h/.x.json", "/h/.x.json.backup", "/h/.xrc", "/h/.x.log",
                            "/h/Library/Caches/x-cli-nodejs", "/h/Library/Caches/x-cli", "/h/Library/Caches/x-nodejs"));
}

TEST(SlugDataPaths, NeverLeadOutOfTheHome) {
    for (const char* slug : {"", ".", "..", "/", "/Documents", "../ben", "a/../..", "./documents"})
        EXPECT_THAT(SlugDataPaths::all("/Users/ada", slug), IsEmpty()) << slug;
}

TEST(SlugDataEligibility, LeavesOutHandlersOfUrlsAndKnownNamesakes) {
    struct Row {
        std::optional<std::string> identifier;
        bool isIncluded;
    };
    const Row rows[] = {
        {std::nullopt, true},
        {"", true},
        {"com.acme.editor", true},
        {"com.adobe.photoshop", true},
        {"com.anthropic.claudefordesktop", false},
        {"Com.Anthropic.ClaudeForDesktop", false},
        {"com.anthropic.claude-code-url-handler", false},
        {"com.acme.url-handler", false},
        {"com.acme.URL-Handler.helper", false},
        {"com.acme.URLHandler", false},
        {"com.acme.url.handler", true},
    };
    for (const Row& row : rows)
        EXPECT_EQ(SlugDataEligibility::includesDotfileAndNodeCaches({"/A.app", "A", row.identifier, "a"}),
                  row.isIncluded)
            << row.identifier.value_or("(none)");
}

}  // namespace
}  // namespace tarvik
