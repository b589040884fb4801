#include "Platform/Text/Json.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <vector>

namespace tarvik {

struct Pet {
    std::string name;
    std::int64_t weight = 0;
    std::optional<std::string> owner;
    std::vector<fs::path> beds;

    bool operator==(const Pet&) const = default;
};

static void to_json(nlohmann::json& json, const Pet& pet) {
    Json::write(json, "name", pet.name);
    Json::write(json, "weight", pet.weight);
    Json::write(json, "owner", pet.owner);
    Json::write(json, "beds", pet.beds);
}

static void from_json(const nlohmann::json& json, Pet& pet) {
    Json::read(json, "name", pet.name);
    Json::read(json, "weight", pet.weight);
    Json::read(json, "owner", pet.owner);
    Json::read(json, "beds", pet.beds);
}

namespace {

using namespace std::chrono_literals;
using Instant = std::chrono::system_clock::time_point;

constexpr Instant autumn{1'794'764'743s};

template <typename Value>
bool isRefused(const std::string& text) {
    try {
        Json::decoded<Value>(nlohmann::json::parse(text));
        return false;
    } catch (const Failure& failure) {
        return failure.domain() == "Json" && !failure.description().empty();
    }
}

TEST(Json, ARecordComesBackAsItWas) {
    const std::vector<Pet> pets = {{"Mimi", 4200, "Anna", {"/a/b", "/caf\u00E9"}}, {"", -1, std::nullopt, {}}};
    EXPECT_EQ(Json::parsedAs<std::vector<Pet>>(Json::pretty(Json::encoded(pets))), pets);
    EXPECT_EQ(Json::parsedAs<std::vector<Pet>>(Json::compact(Json::encoded(pets))), pets);
}

TEST(Json, AnAbsentValueIsNoKeyAtAll) {
    EXPECT_EQ(Json::compact(Pet{"Mimi", 1, std::nullopt, {}}), R"({"beds":[],"name":"Mimi","weight":1})");
    nlohmann::json nothing;
    Json::write(nothing, "owner", std::optional<std::string>());
    EXPECT_EQ(Json::compact(nothing), "{}");
}

TEST(Json, AnAbsentKeyAndANullAreReadAsAbsent) {
    EXPECT_EQ(Json::parsedAs<Pet>(R"({"name":"Mimi","weight":1,"beds":[]})"), (Pet{"Mimi", 1, std::nullopt, {}}));
    EXPECT_EQ(Json::parsedAs<Pet>(R"({"name":"Mimi","weight":1,"beds":[],"owner":null})"),
              (Pet{"Mimi", 1, std::nullopt, {}}));
}

TEST(Json, UnknownKeysAreIgnored) {
    EXPECT_EQ(Json::parsedAs<Pet>(R"({"name":"Mimi","weight":1,"beds":[],"colour":{"left":"red"}})"),
              (Pet{"Mimi", 1, std::nullopt, {}}));
}

TEST(Json, ADamagedRecordIsNone) {
    for (const char* text : {
             "",
             "{",
             "null",
             "[]",
             "7",
             R"("Mimi")",
             "\xFF",
             R"({"weight":1,"beds":[]})",                          // a key is missing
             R"({"name":null,"weight":1,"beds":[]})",              // a value is missing
             R"({"name":"Mimi","weight":"1","beds":[]})",          // a text for a number
             R"({"name":"Mimi","weight":1.5,"beds":[]})",          // no whole number
             R"({"name":"Mimi","weight":1,"beds":{}})",            // no list
             R"({"name":"Mimi","weight":1,"beds":[1]})",           // a list of something else
             R"({"name":"Mimi","weight":1,"beds":[],"owner":5})",  // a wrong value where there may be none
             R"({"name":"Mimi","weight":1,"beds":[]} and more)",
         })
        EXPECT_EQ(Json::parsedAs<Pet>(text), std::nullopt) << text;
    EXPECT_EQ(Json::parsedAs<std::vector<Pet>>(R"([{"name":"Mimi","weight":1,"beds":[]}, 5])"), std::nullopt);
}

TEST(Json, NestsAsDeepAsAnyRecordNeedsAndNoDeeper) {
    const auto nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
    EXPECT_TRUE(Json::parsed(nested(128)));
    EXPECT_FALSE(Json::parsed(nested(129)));
    EXPECT_TRUE(Json::parsed("[" + nested(127) + "," + nested(127) + "]"));
    EXPECT_FALSE(Json::parsed("[{\"a\":" + nested(127) + "}]"));
    EXPECT_TRUE(Json::parsed("[\"\\\\\\\"" + nested(129) + "\"," + nested(127) + "]"));
}

TEST(Json, SaysWhichKeyIsMissing) {
    try {
        Json::decoded<Pet>(nlohmann::json::parse(R"({"name":"Mimi","beds":[]})"));
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description(), "A record has no \"weight\".");
    }
}

TEST(Json, ReadsValuesOfTheirOwnTypeAlone) {
    EXPECT_TRUE(Json::decoded<bool>(nlohmann::json(true)));
    EXPECT_TRUE(isRefused<bool>("1"));
    EXPECT_TRUE(isRefused<std::int64_t>("true"));
    EXPECT_TRUE(isRefused<std::int64_t>("1.0"));
    EXPECT_TRUE(isRefused<std::int64_t>("9223372036854775808"));
    EXPECT_EQ(Json::decoded<std::int64_t>(nlohmann::json::parse("-9223372036854775808")),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_TRUE(isRefused<std::int32_t>("2147483648"));
    EXPECT_TRUE(isRefused<std::uint32_t>("-1"));
    EXPECT_EQ(Json::decoded<double>(nlohmann::json::parse("2")), 2.0);
    EXPECT_TRUE(isRefused<double>("\"2\""));
    EXPECT_TRUE(isRefused<std::string>("2"));
    EXPECT_TRUE(isRefused<fs::path>("[]"));
    EXPECT_TRUE(isRefused<std::vector<std::string>>("\"text\""));
}

TEST(Json, PrettyTextIsIndentedAndSorted) {
    EXPECT_EQ(
        Json::pretty(Pet{"Mimi", 1, "Anna", {"/bed"}}),
        "{\n  \"beds\": [\n    \"/bed\"\n  ],\n  \"name\": \"Mimi\",\n  \"owner\": \"Anna\",\n  \"weight\": 1\n}\n");
}

TEST(Json, WritesATextThatIsNoUtf8WithReplacements) {
    EXPECT_EQ(Json::compact(nlohmann::json("a\xFFz")), "\"a\uFFFDz\"");
}

TEST(Json, APathComesBackByteForByte) {
    std::string everyByte = "/";
    for (int byte = 1; byte < 256; ++byte) everyByte += static_cast<char>(byte);
    for (const std::string path : {"", "/plain", "/caf\u00E9/\U0001F600", "/\xFF", "/a\xE2\x82z", "\xC3\u00E9",
                                   "/\x80\x61", everyByte.c_str()}) {
        const std::string text = Json::compact(Json::encoded(fs::path(path)));
        EXPECT_EQ(Json::parsedAs<fs::path>(text).value_or("lost").native(), path) << text;
    }
}

TEST(Json, WritesBadBytesOfAPathAsEscapes) {
    EXPECT_EQ(Json::compact(Json::encoded(fs::path("/caf\xE9 \u00E9"))), "\"/caf\\u0000e9 \u00E9\"");
    EXPECT_THROW(Json::textOfPath(std::string("/a\0b", 4)), Failure);
    for (const char* text : {R"("\u0000")", R"("\u0000f")", R"("\u0000fg")", R"("\u0000-1")", R"("a\u0000\u0000e9")"})
        EXPECT_TRUE(isRefused<fs::path>(text)) << text;
}

TEST(Json, ReadsIsoDates) {
    EXPECT_EQ(Json::instantOfIsoDate("2026-11-15T17:45:43Z"), autumn);
    EXPECT_EQ(Json::instantOfIsoDate("2026-11-15T17:45:43+00:00"), autumn);
    EXPECT_EQ(Json::instantOfIsoDate("2026-11-15T19:15:43+01:30"), autumn);
    EXPECT_EQ(Json::instantOfIsoDate("2026-11-15T09:45:43-08:00"), autumn);
    EXPECT_EQ(Json::instantOfIsoDate("1969-12-31T23:59:59Z"), Instant(-1s));
    for (const char* text :
         {"", "2026-11-15", "2026-11-15T17:45:43", "2026-11-15 17:45:43Z", "2026-13-15T17:45:43Z",
          "2026-02-30T17:45:43Z", "2026-00-15T17:45:43Z", "2026-11-15T24:00:00Z", "2026-11-15T17:60:43Z",
          "2026-11-15T17:45:60Z", "2026-11-15T17:45:43.5Z", "2026-11-15T17:45:43z", "2026-11-15T17:45:43Z ",
          "2026-11-15T17:45:43+0100", "2026-11-15T17:45:43+24:00", "2026-11-15T-7:45:43Z", "2026-11-15T 7:45:43Z",
          "9999-11-15T17:45:43Z"})
        EXPECT_EQ(Json::instantOfIsoDate(text), std::nullopt) << text;
}

TEST(Json, WritesDatesAsIsoTextOrAsSecondsSince2001) {
    nlohmann::json json;
    Json::writeIsoDate(json, "iso", autumn + 750ms);
    Json::writeReferenceDate(json, "reference", autumn + 750ms);
    EXPECT_EQ(Json::compact(json), R"({"iso":"2026-11-15T17:45:43Z","reference":816457543.75})");

    Instant iso;
    Instant reference;
    Json::readIsoDate(json, "iso", iso);
    Json::readReferenceDate(json, "reference", reference);
    EXPECT_EQ(iso, autumn);
    EXPECT_EQ(reference, autumn + 750ms);
}

TEST(Json, RefusesDatesThatAreNone) {
    const auto json = nlohmann::json::parse(R"({"text":"yesterday","huge":1e300,"number":5})");
    Instant instant = autumn;
    EXPECT_THROW(Json::readIsoDate(json, "text", instant), Failure);
    EXPECT_THROW(Json::readIsoDate(json, "number", instant), Failure);
    EXPECT_THROW(Json::readIsoDate(json, "missing", instant), Failure);
    EXPECT_THROW(Json::readReferenceDate(json, "text", instant), Failure);
    EXPECT_THROW(Json::readReferenceDate(json, "huge", instant), Failure);
    EXPECT_EQ(instant, autumn);
}

}  // namespace
}  // namespace tarvik
