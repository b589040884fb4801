#include "Platform/Text/Json.h"
#include "Platform/Text/Text.h"
#include "Support/Mutator.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace tarvik {
namespace {

constexpr int mutantsOfASample = 8'000;

TEST(JsonFuzz, ADateThatIsReadIsTheOneThatIsWritten) {
    test::Mutator mutator(11,
                          {"0000", "9999", "-", "+", "+23:59", "-00:00", "Z", "T", "02-29", "24:00:00", "\u0660", "."});
    int read = 0;
    for (const char* good : {"2026-11-15T17:45:43Z", "2024-02-29T00:00:00+01:30", "1969-12-31T23:59:59-12:00"}) {
        ASSERT_TRUE(Json::instantOfIsoDate(good));
        for (int round = 0; round < mutantsOfASample; ++round) {
            const std::string text = mutator.mutated(good);
            const auto instant = Json::instantOfIsoDate(text);
            if (!instant) continue;
            ++read;
            const std::string written = Text::isoDate(*instant);
            EXPECT_EQ(Json::instantOfIsoDate(written), instant) << text;
            if (text.ends_with('Z')) {
                EXPECT_EQ(written, text);
            }
        }
    }
    EXPECT_GT(read, 100) << "some changes leave a date";
}

TEST(JsonFuzz, EveryPathComesBackAsItWas) {
    std::mt19937 random(12);
    for (int round = 0; round < mutantsOfASample; ++round) {
        std::string bytes;
        for (auto count = random() % 24; count > 0; --count) bytes += static_cast<char>(1 + random() % 255);
        const std::string text = Json::textOfPath(bytes);
        EXPECT_TRUE(Text::isValidUtf8(text));
        EXPECT_EQ(Json::pathOfText(text).native(), bytes);
    }
}

TEST(JsonFuzz, ATextIsReadAsAPathOnlyIfItIsTheTextOfThatPath) {
    using namespace std::string_literals;
    const std::string good = Json::textOfPath("/Volumes/Backup/Gr\u00F6\xDF\x65 \xFF\xFE/\u5199\xE7\x9C");
    test::Mutator mutator(13, {"\0"s, "\0ff"s, "\0FF"s, "\00041"s, "\00000"s, "\0c3\0a4"s, "\u00E4", "/../"});
    int read = 0;
    for (int round = 0; round < mutantsOfASample; ++round) {
        const std::string text = mutator.mutated(good);
        try {
            const fs::path path = Json::pathOfText(text);
            ++read;
            EXPECT_EQ(path.native().find('\0'), std::string::npos);
            EXPECT_EQ(Json::textOfPath(path), text);
        } catch (const Failure&) {
            continue;
        }
    }
    EXPECT_GT(read, 100) << "some changes leave a path";
}

}  // namespace
}  // namespace tarvik
