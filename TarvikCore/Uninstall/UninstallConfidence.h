#pragma once

#include <optional>
#include <string_view>

namespace tarvik {

/// How sure it is that something belongs to an application.
enum class UninstallConfidence { high, medium, low };

/// The text that stands for it in records: the enumerator's own name.
std::string_view textOf(UninstallConfidence confidence);
std::optional<UninstallConfidence> uninstallConfidenceOf(std::string_view text);

}  // namespace tarvik
