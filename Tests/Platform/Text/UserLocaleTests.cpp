#include "Platform/Text/UserLocale.h"
#include "Support/EnvironmentVariable.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarvik {

namespace {

using Value = std::optional<std::string>;

std::string nameWhere(const Value& all, const Value& collate, const Value& lang) {
    const test::EnvironmentVariable first("LC_ALL", all);
    const test::EnvironmentVariable second("LC_COLLATE", collate);
    const test::EnvironmentVariable third("LANG", lang);
    return UserLocale::name();
}

}  // namespace

TEST(UserLocale, IsTheFirstThatTheEnvironmentNames) {
    EXPECT_EQ(nameWhere("sv_SE.UTF-8", "de_DE", "fr_FR"), "sv_SE.UTF-8");
    EXPECT_EQ(nameWhere("", "de_DE", "fr_FR"), "de_DE");
    EXPECT_EQ(nameWhere(std::nullopt, std::nullopt, "fr_FR"), "fr_FR");
}

TEST(UserLocale, IsNoneForMachines) {
    for (const char* name : {"C", "POSIX", "C.UTF-8"}) EXPECT_EQ(nameWhere(std::nullopt, name, "fr_FR"), "") << name;
    EXPECT_EQ(nameWhere(std::nullopt, "CY", std::nullopt), "CY");
}

TEST(UserLocale, IsTheSystemsWhereTheEnvironmentNamesNone) {
    EXPECT_EQ(nameWhere(std::nullopt, std::nullopt, std::nullopt), UserLocale::inSystemSettings());
    EXPECT_EQ(nameWhere("", "", ""), UserLocale::inSystemSettings());
}

}  // namespace tarvik
