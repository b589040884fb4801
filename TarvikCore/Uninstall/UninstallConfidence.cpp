#include "Uninstall/UninstallConfidence.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In declared order.
constexpr std::array<std::string_view, 3> confidenceTexts = {"high", "medium", "low"};

}  // namespace

std::string_view textOf(UninstallConfidence confidence) {
    return confidenceTexts.at(static_cast<std::size_t>(confidence));
}

std::optional<UninstallConfidence> uninstallConfidenceOf(std::string_view text) {
    const auto* const found = std::find(confidenceTexts.begin(), confidenceTexts.end(), text);
    if (found == confidenceTexts.end()) return std::nullopt;
    return static_cast<UninstallConfidence>(found - confidenceTexts.begin());
}

}  // namespace tarvik
