#include "Installers/Options/InstallerOptionFile.h"
#include "Support/Mutator.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <iostream>

namespace tarvik {
namespace {

using namespace test;

constexpr std::string_view wholeOption = R"(# A comment.
id = "mine"
label = "My \"own\" \u00FC"
strategy = "tracked"
sourceKinds = ["pkg", "mpkg",
               "script"]
allowUntrustedPackages = true
allowUntrustedScripts = true
externalRootName = "Tools"
applicationLinkRoot = "/Applications"
track = false
relocateSafeApps = true
)";

InstallerOption wholeRecord() {
    return {.id = "mine",
            .label = "My \"own\" \xC3\xBC",
            .strategy = "tracked",
            .sourceKinds = {InstallerKind::pkg, InstallerKind::mpkg, InstallerKind::script},
            .allowUntrustedPackages = true,
            .allowUntrustedScripts = true,
            .externalRootName = "Tools",
            .applicationLinkRoot = "/Applications",
            .track = false,
            .relocateSafeApps = true};
}

/// The lines of the option, one of them replaced or, without a replacement, left out.
std::string optionWith(std::string_view key, std::string_view line) {
    std::string text(wholeOption);
    const auto begin = text.find("\n" + std::string(key) + " =") + 1;
    auto end = text.find('\n', begin) + 1;
    if (key == "sourceKinds") end = text.find('\n', end) + 1;
    return text.replace(begin, end - begin, line);
}

TEST(InstallerOptionFile, HoldsEveryField) {
    EXPECT_EQ(InstallerOptionFile::parsed(wholeOption), wholeRecord());
}

TEST(InstallerOptionFile, NeedsEveryKeyButOne) {
    for (const char* key : {"id", "label", "strategy", "sourceKinds", "allowUntrustedPackages", "externalRootName",
                            "applicationLinkRoot", "track", "relocateSafeApps"})
        EXPECT_EQ(InstallerOptionFile::parsed(optionWith(key, "")), std::nullopt) << key;
    InstallerOption careful = wholeRecord();
    careful.allowUntrustedScripts = false;
    EXPECT_EQ(InstallerOptionFile::parsed(optionWith("allowUntrustedScripts", "")), careful);
}

TEST(InstallerOptionFile, NeedsValuesOfTheirType) {
    for (const char* key : {"allowUntrustedPackages", "allowUntrustedScripts", "track", "relocateSafeApps"})
        for (const char* value : {" = 1\n", " = \"true\"\n", " = []\n", " = TRUE\n"})
            EXPECT_EQ(InstallerOptionFile::parsed(optionWith(key, key + std::string(value))), std::nullopt)
                << key << value;
    for (const char* key : {"id", "label", "strategy", "externalRootName", "applicationLinkRoot"})
        for (const char* value : {" = 1\n", " = true\n", " = [\"a\"]\n", " = {a = 1}\n", " = 2026-11-22\n"})
            EXPECT_EQ(InstallerOptionFile::parsed(optionWith(key, key + std::string(value))), std::nullopt)
                << key << value;
    for (const char* value : {"\"pkg\"", "[\"pkg\", 1]", "[\"pkg\", \"rpm\"]", "[\"Pkg\"]", "[[\"pkg\"]]", "true"})
        EXPECT_EQ(InstallerOptionFile::parsed(optionWith("sourceKinds", "sourceKinds = " + std::string(value) + "\n")),
                  std::nullopt)
            << value;
}

TEST(InstallerOptionFile, MatchesKeysAsTheyAreWritten) {
    EXPECT_EQ(InstallerOptionFile::parsed(optionWith("track", "Track = true\n")), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(optionWith("allowUntrustedPackages", "allow_untrusted_packages = true\n")),
              std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(optionWith("track", "[more]\ntrack = true\n")), std::nullopt);
}

TEST(InstallerOptionFile, MayHoldMore) {
    const std::string more = std::string(wholeOption) + "colour = \"blue\"\nsize = 1.5\n[author]\nid = 7\n";
    EXPECT_EQ(InstallerOptionFile::parsed(more), wholeRecord());
    EXPECT_TRUE(InstallerOptionFile::parsed(optionWith("sourceKinds", "sourceKinds = []\n")));
}

TEST(InstallerOptionFile, IsNothingWhenItIsBroken) {
    const std::string whole(wholeOption);
    EXPECT_EQ(InstallerOptionFile::parsed(""), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + "id = \"again\"\n"), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + "open = [\n"), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + "bytes = \"\xFF\"\n"), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + std::string("\0", 1)), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + "deep = " + std::string(100'000, '[')), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + "deep = " + std::string(100'000, '[') + std::string(100'000, ']')),
              std::nullopt);
}

TEST(InstallerOptionFile, NeverNestsSoDeeplyThatReadingItEndsTheProgram) {
    const std::string whole(wholeOption);
    std::string key;
    for (int each = 0; each < 400'000; ++each) key += "a.";
    EXPECT_EQ(InstallerOptionFile::parsed(whole + key + "b = 1\n"), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(whole + "[" + key + "b]\n"), std::nullopt);
    // What looks like a comment is the end of a text, and a key follows it.
    std::string hidden = whole;
    hidden.append("k = [\"\"\"\n#\"\"\", {").append(key, 0, 98'000).append("b = 1}]\n");
    EXPECT_EQ(InstallerOptionFile::parsed(hidden), std::nullopt);
    EXPECT_EQ(InstallerOptionFile::parsed(fmt::format("{}# {}\n", whole, key.substr(0, 3000))), wholeRecord());
    EXPECT_EQ(InstallerOptionFile::parsed(fmt::format("{}{}b = 1\n", whole, key.substr(0, 1000))), wholeRecord());
}

TEST(InstallerOptionFile, IsWholeOrNothingWhateverIsBrokenInIt) {
    Mutator mutator(20261122,
                    {"[", "]", "{", "}", "\"\"\"", "'''", "\\u0000", "\\U0010FFFF", "= ", "\n", "#", "[[a]]\n",
                     "id = \"x\"\n", "1e999", "0x", "1979-05-27T07:32:00Z", "\xFF", "\xED\xA0\x80"});
    constexpr int tries = 20'000;
    int whole = 0;
    for (int each = 0; each < tries; ++each) {
        const auto option = InstallerOptionFile::parsed(mutator.mutated(std::string(wholeOption)));
        if (!option) continue;
        ++whole;
        for (const InstallerKind kind : option->sourceKinds) ASSERT_TRUE(installerKindOf(textOf(kind)));
    }
    EXPECT_GT(whole, 0);
    EXPECT_LT(whole, tries);
    std::cout << tries << " options tried, " << whole << " of them read\n";
}

}  // namespace
}  // namespace tarvik
