#include "Platform/Files/ClashNames.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvik {
namespace {

using ClashNames::numbered;

TEST(ClashNames, KeepAFreeNameAsItIs) {
    EXPECT_EQ(numbered("Notes.txt", 1, ' ', 255), "Notes.txt");
}

TEST(ClashNames, PutTheNumberBeforeTheExtension) {
    EXPECT_EQ(numbered("Notes.txt", 2, ' ', 255), "Notes 2.txt");
    EXPECT_EQ(numbered("Notes.txt", 10, '.', 255), "Notes.10.txt");
    EXPECT_EQ(numbered("Notes", 2, ' ', 255), "Notes 2");
    EXPECT_EQ(numbered("archive.tar.gz", 2, ' ', 255), "archive.tar 2.gz");
    EXPECT_EQ(numbered(".profile", 2, '.', 255), ".profile.2");
}

TEST(ClashNames, ShortenTheStemOfALongName) {
    EXPECT_EQ(numbered("abcdefgh.txt", 1, ' ', 10), "abcdef.txt");
    EXPECT_EQ(numbered("abcdefgh.txt", 2, ' ', 10), "abcd 2.txt");
    EXPECT_EQ(numbered("abcdefgh", 2, ' ', 6), "abcd 2");
}

TEST(ClashNames, NeverCutACharacterInTwo) {
    EXPECT_EQ(numbered("a\xE2\x82\xAC\xE2\x82\xAC", 1, ' ', 6), "a\xE2\x82\xAC");
    EXPECT_EQ(numbered("a\xE2\x82\xAC\xE2\x82\xAC", 1, ' ', 5), "a\xE2\x82\xAC");
    EXPECT_EQ(numbered("a\xE2\x82\xAC\xE2\x82\xAC", 1, ' ', 4), "a\xE2\x82\xAC");
    EXPECT_EQ(numbered("a\xE2\x82\xAC\xE2\x82\xAC", 1, ' ', 3), "a");
    EXPECT_EQ(numbered("ab\xF0\x9F\x99\x82", 1, ' ', 5), "ab");
}

TEST(ClashNames, CutBytesThatAreNoTextAnywhere) {
    EXPECT_EQ(numbered(std::string(20, '\x80'), 1, ' ', 10), std::string(10, '\x80'));
}

TEST(ClashNames, GiveUpAnExtensionThatLeavesNoRoom) {
    EXPECT_EQ(numbered("name.extension", 2, ' ', 8), "name 2");
    EXPECT_EQ(numbered("a. a long sentence after a full stop", 2, ' ', 255), "a. a long sentence after a full stop 2");
}

}  // namespace
}  // namespace tarvik
