#include "AppData/DataName.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tarvik {
namespace {

using namespace std::string_view_literals;

TEST(DataName, StandsForAnItemOfItsOwn) {
    for (const auto name : {"Editor"sv, "com.acme.editor"sv, "Two Words"sv, " "sv, "..x"sv, "..."sv, "Größe"sv,
                            "\xFF\xFE"sv, "Vendor/Editor"sv, ".hidden"sv})
        EXPECT_TRUE(DataName::isUsable(name)) << name;
}

TEST(DataName, NeverStandsForAFolderOfEverybody) {
    for (const auto name : {""sv, "."sv, ".."sv, "/"sv, "/etc"sv, "a/"sv, "a//b"sv, "../a"sv, "a/.."sv, "a/../../b"sv,
                            "./a"sv, "a/."sv, "\0"sv, "a\0b"sv})
        EXPECT_FALSE(DataName::isUsable(name)) << name;
}

TEST(DataName, IsNoLongerThanAPath) {
    EXPECT_TRUE(DataName::isUsable(std::string(4096, 'x')));
    EXPECT_FALSE(DataName::isUsable(std::string(4097, 'x')));
}

TEST(DataName, IsOneComponentWithoutControlCharacters) {
    for (const auto name : {"Editor"sv, "com.acme.editor"sv, "Two Words"sv, " "sv, "..x"sv, "Wait..."sv, "What?*"sv,
                            "Größe"sv, "\xFF\xFE"sv, ".hidden"sv})
        EXPECT_TRUE(DataName::isOneComponent(name)) << name;
    for (const auto name : {""sv, "."sv, ".."sv, "/"sv, "a/b"sv, "a\0b"sv, "a\nb"sv, "\r"sv, "a\tb"sv, "a\x7F"sv,
                            "a\u0085"sv, "\u2028"sv, "a\u2029b"sv})
        EXPECT_FALSE(DataName::isOneComponent(name)) << name;
}

}  // namespace
}  // namespace tarvik
