// What a Mac is told of the window before it runs: the list that the build puts into its bundle.
#include "Platform/Text/PropertyList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace tarvik {

namespace {

const fs::path description = TARVIK_BUNDLE_DESCRIPTION;

std::string textAt(std::string_view key) {
    return PropertyList::dictionaryAt(description).text(key).value_or("(none)");
}

}  // namespace

TEST(BundleDescription, IsAPropertyListWithNothingLeftToFillIn) {
    const auto list = PropertyList::at(description);
    ASSERT_TRUE(list);
    ASSERT_TRUE(list->as<PropertyList::Dictionary>());
    EXPECT_EQ(list->xml().find('@'), std::string::npos);
    EXPECT_EQ(list->xml().find('$'), std::string::npos);
}

TEST(BundleDescription, TellsWhatTheProgramIs) {
    EXPECT_EQ(textAt("CFBundleExecutable"), "Tarvik");
    EXPECT_EQ(textAt("CFBundlePackageType"), "APPL");
    EXPECT_EQ(textAt("CFBundleIconFile"), "Tarvik.icns");
    EXPECT_EQ(textAt("CFBundleShortVersionString"), TARVIK_VERSION);
    EXPECT_EQ(textAt("CFBundleVersion"), TARVIK_VERSION);
    EXPECT_EQ(textAt("LSApplicationCategoryType"), "public.app-category.utilities");
    EXPECT_EQ(textAt("LSMinimumSystemVersion"), TARVIK_OLDEST_MACOS);
    const auto list = PropertyList::dictionaryAt(description);
    ASSERT_TRUE(list.find("NSHighResolutionCapable"));
    EXPECT_EQ(*list.find("NSHighResolutionCapable"), PropertyList(true));
}

TEST(BundleDescription, SaysInOneSentenceWhyItAsksForEachPlace) {
    for (const char* place : {"AppData", "DesktopFolder", "DocumentsFolder", "DownloadsFolder", "NetworkVolumes",
                              "RemovableVolumes", "SystemAdministration"}) {
        const std::string sentence = textAt(std::string("NS") + place + "UsageDescription");
        EXPECT_TRUE(sentence.starts_with("Tarvik ")) << place << ": " << sentence;
        EXPECT_TRUE(sentence.ends_with('.')) << sentence;
        EXPECT_EQ(std::count(sentence.begin(), sentence.end(), '.'), 1) << sentence;
    }
}

TEST(BundleDescription, TakesFoldersThatAreDroppedOnItAndNothingElse) {
    const auto list = PropertyList::dictionaryAt(description);
    ASSERT_TRUE(list.find("CFBundleDocumentTypes"));
    const auto* const types = list.find("CFBundleDocumentTypes")->as<PropertyList::List>();
    ASSERT_TRUE(types);
    ASSERT_EQ(types->size(), 1U);
    EXPECT_EQ(*types->front().find("LSItemContentTypes"), PropertyList(PropertyList::List{"public.folder"}));
    EXPECT_EQ(types->front().text("LSHandlerRank"), "Alternate") << "a folder still opens in the Finder";
}

TEST(BundleDescription, LetsTheInterpreterOfTheViewsMakeItsCode) {
    const auto rights = PropertyList::dictionaryAt(TARVIK_ENTITLEMENTS);
    EXPECT_EQ(rights, PropertyList(PropertyList::Dictionary{{"com.apple.security.cs.allow-jit", true}}));
}

}  // namespace tarvik
