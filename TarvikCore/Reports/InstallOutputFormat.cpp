#include "Reports/InstallOutputFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In declared order.
constexpr std::array<std::string_view, 3> formatTexts = {"human", "tsv", "toml"};

}  // namespace

std::string_view textOf(InstallOutputFormat format) {
    return formatTexts.at(static_cast<std::size_t>(format));
}

std::optional<InstallOutputFormat> installOutputFormatOf(std::string_view text) {
    const auto* const found = std::find(formatTexts.begin(), formatTexts.end(), text);
    if (found == formatTexts.end()) return std::nullopt;
    return static_cast<InstallOutputFormat>(found - formatTexts.begin());
}

}  // namespace tarvik
