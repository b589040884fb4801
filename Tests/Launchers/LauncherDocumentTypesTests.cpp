#include "Launchers/LauncherDocumentTypes.h"

#include <gtest/gtest.h>

namespace tarvik {

namespace {

using Dictionary = PropertyList::Dictionary;
using List = PropertyList::List;

List typesOf(PropertyList types) {
    return LauncherDocumentTypes::of(Dictionary{{"CFBundleDocumentTypes", std::move(types)}});
}

}  // namespace

TEST(LauncherDocumentTypes, AreThoseOfTheApplicationAskedLast) {
    const Dictionary letter{{"CFBundleTypeName", "Letter"},
                            {"CFBundleTypeRole", "Editor"},
                            {"CFBundleTypeExtensions", List{"letter", "ltr"}},
                            {"LSItemContentTypes", List{"org.example.letter"}},
                            {"LSHandlerRank", "Owner"},
                            {"CFBundleTypeIconFile", "Letter.icns"},
                            {"NSDocumentClass", "Letter"}};
    const Dictionary anything{{"CFBundleTypeOSTypes", List{"****"}}};
    EXPECT_EQ(typesOf(List{letter, anything}),
              (List{Dictionary{{"CFBundleTypeName", "Letter"},
                               {"CFBundleTypeRole", "Editor"},
                               {"CFBundleTypeExtensions", List{"letter", "ltr"}},
                               {"LSItemContentTypes", List{"org.example.letter"}},
                               {"LSHandlerRank", "Alternate"}},
                    Dictionary{{"CFBundleTypeOSTypes", List{"****"}}, {"LSHandlerRank", "Alternate"}}}));
}

TEST(LauncherDocumentTypes, AreNoneWhereTheApplicationTakesNone) {
    EXPECT_EQ(LauncherDocumentTypes::of({}), List{});
    EXPECT_EQ(LauncherDocumentTypes::of("no list"), List{});
    for (const PropertyList& odd : {PropertyList("text"), PropertyList(List{}), PropertyList(List{"text", List{}}),
                                    PropertyList(List{Dictionary{{"NSDocumentClass", "Letter"}}})})
        EXPECT_EQ(typesOf(odd), List{});
}

}  // namespace tarvik
