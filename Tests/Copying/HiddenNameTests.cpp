#include "Copying/HiddenName.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tarvik::test {

TEST(HiddenName, IsMadeOfTheItemsOwn) {
    const fs::path place = HiddenName::forRemovalOf("/home/ada/Music");
    EXPECT_EQ(place.parent_path(), "/home/ada");
    EXPECT_THAT(place.filename().native(), testing::MatchesRegex("\\.tarvik-removing-[0-9A-F]+-Music"));
    EXPECT_NE(place, HiddenName::forRemovalOf("/home/ada/Music"));
}

TEST(HiddenName, HasRoomForTheLongestNames) {
    std::string name = std::string(252, 'n') + "\xe2\x82\xac";  // The euro sign ends at byte 255.
    const fs::path place = HiddenName::forRemovalOf(fs::path("/home") / name);
    EXPECT_LE(place.filename().native().size(), 255U);
    EXPECT_EQ(place.filename().native().back(), 'n');
}

TEST(HiddenName, TellsOfItsItemAndItsPurpose) {
    using HiddenName::Purpose;
    const fs::path longest = "/home/" + std::string(255, 'n');
    for (const fs::path& item : {fs::path("/home/ada/Music"), fs::path("/home/-odd \xff-\n"), longest}) {
        const std::string copy = HiddenName::forCopyTo(item).filename();
        const std::string removal = HiddenName::forRemovalOf(item).filename();
        const std::string exchange = HiddenName::forExchangeOf(item).filename();
        EXPECT_TRUE(HiddenName::isFor(copy, Purpose::copy, item));
        EXPECT_TRUE(HiddenName::isFor(removal, Purpose::removal, item));
        EXPECT_TRUE(HiddenName::isFor(exchange, Purpose::exchange, item));
        EXPECT_FALSE(HiddenName::isFor(copy, Purpose::removal, item));
        EXPECT_FALSE(HiddenName::isFor(copy, Purpose::copy, "/home/other"));
    }
    EXPECT_EQ(HiddenName::read(HiddenName::forRemovalOf("/home/ada/Music").filename().native()),
              (HiddenName::Reading{Purpose::removal, "Music"}));
}

TEST(HiddenName, IsKnownInTheSpellingThatAVolumeLists) {
    using HiddenName::Purpose;
    EXPECT_TRUE(HiddenName::isFor(".tarvik-moving-0A1B2C3D-Cafe\u0301", Purpose::copy, "/home/Caf\u00E9"));
    EXPECT_TRUE(HiddenName::isFor(".tarvik-moving-0A1B2C3D-music", Purpose::copy, "/home/Music"));
    EXPECT_FALSE(HiddenName::isFor(".tarvik-moving-0A1B2C3D-musik", Purpose::copy, "/home/Music"));
}

TEST(HiddenName, IsNoNameOfSomeoneElse) {
    for (const char* name :
         {"", "Music", ".tarvik-notes", ".tarvik-moving-notes", ".tarvik-moving-12345678", ".tarvik-moving-1234ABCD-",
          ".tarvik-moving-abcdefgh-x", ".tarvik-removing-1234567-x", "tarvik-moving-1234ABCD-x"})
        EXPECT_EQ(HiddenName::read(name), std::nullopt) << name;
}

TEST(HiddenName, IsNotSpokenOf) {
    const std::string longName(250, 'n');
    for (const std::string& name : {std::string("Music"), std::string("odd \xff"), longName}) {
        const fs::path item = fs::path("/drive") / name;
        const fs::path hidden = HiddenName::forCopyTo(item);
        EXPECT_EQ(HiddenName::inOwnName("no " + hidden.native() + " and " + hidden.native() + "/x", hidden, item),
                  "no " + item.native() + " and " + item.native() + "/x");
    }
    const fs::path folder = HiddenName::forCopyTo("/drive/Music");
    EXPECT_EQ(HiddenName::inOwnName((folder / "Music").native(), folder, "/drive/Music"), "/drive/Music/Music");
    EXPECT_EQ(HiddenName::inOwnName((folder / "Music").native(), folder / "Music", "/drive/Music"), "/drive/Music");
    // The copy tool spells bytes that are no text in its own way.
    const fs::path odd = HiddenName::forCopyTo("/drive/odd \xff");
    std::string spelt = odd.native();
    spelt.replace(spelt.size() - 1, 1, "\\xFF");
    EXPECT_EQ(HiddenName::inOwnName(spelt, odd, "/drive/odd \xff"), "/drive/odd \\xFF");
}

}  // namespace tarvik::test
