#include "Reports/InstallOutputFormat.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

TEST(InstallOutputFormats, HaveTheirTexts) {
    using enum InstallOutputFormat;
    for (const auto& [format, text] : {std::pair(human, "human"), std::pair(tsv, "tsv"), std::pair(toml, "toml")}) {
        EXPECT_EQ(textOf(format), text);
        EXPECT_EQ(installOutputFormatOf(text), format);
    }
    for (const char* text : {"", "TSV", "json"}) EXPECT_EQ(installOutputFormatOf(text), std::nullopt) << text;
}

}  // namespace
}  // namespace tarvik
