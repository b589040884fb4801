#include "Applications/AppRecordKind.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik {

namespace {

/// In declared order.
constexpr std::array<std::string_view, 7> texts = {
    "normal", "userApplications", "symlink", "tarvikLauncher", "externalTarget", "macAppStore", "systemRisky",
};

}  // namespace

std::string_view textOf(AppRecordKind kind) {
    return texts.at(static_cast<std::size_t>(kind));
}

std::optional<AppRecordKind> appRecordKindOf(std::string_view text) {
    const auto* const found = std::find(texts.begin(), texts.end(), text);
    if (found == texts.end()) return std::nullopt;
    return static_cast<AppRecordKind>(found - texts.begin());
}

}  // namespace tarvik
