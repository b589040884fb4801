#include "AppData/CuratedDomains.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

TEST(CuratedDomains, KnowWhatCertainApplicationsOwn) {
    struct Row {
        std::string identifier;
        OwnedPaths owned;
    };
    const Row rows[] = {
        {"com.anthropic.claudefordesktop", {true, {}}},
        {"com.anthropic.claude-code-url-handler", {true, {}}},
        {"com.apple.logic10",
         {false, {"/Library/Application Support/Logic", "/Library/Application Support/GarageBand"}}},
        {"com.apple.finalcut", {false, {"/Library/Application Support/ProApps"}}},
        {"com.adobe.photoshop", {false, {"/Library/Application Support/Adobe"}}},
        {"com.arobas-music.guitarpro8", {false, {"/Library/Application Support/Arobas Music"}}},
        {"com.image-line.flstudio", {false, {"/Library/Application Support/Image-Line"}}},
        {"com.steinberg.spectralayers12", {false, {"/Library/Application Support/Steinberg"}}},
    };
    for (const Row& row : rows) {
        const OwnedPaths* const owned = CuratedDomains::entry(row.identifier);
        ASSERT_NE(owned, nullptr) << row.identifier;
        EXPECT_EQ(*owned, row.owned) << row.identifier;
    }
}

TEST(CuratedDomains, TakeIdentifiersInEitherCase) {
    EXPECT_EQ(CuratedDomains::entry("COM.Apple.Logic10"), CuratedDomains::entry("com.apple.logic10"));
    EXPECT_NE(CuratedDomains::entry("COM.Apple.Logic10"), nullptr);
}

TEST(CuratedDomains, DoNotKnowOthers) {
    EXPECT_EQ(CuratedDomains::entry(std::nullopt), nullptr);
    EXPECT_EQ(CuratedDomains::entry(""), nullptr);
    EXPECT_EQ(CuratedDomains::entry("com.apple.logic"), nullptr);
    EXPECT_EQ(CuratedDomains::entry("com.apple.logic10.helper"), nullptr);
}

}  // namespace
}  // namespace tarvik
