#pragma once

#include <array>
#include <string_view>
#include <utility>

namespace tarvik::CommandLine {

/// The options that take a value, and what it is.
inline constexpr std::array<std::pair<std::string_view, std::string_view>, 7> valuedOptions = {
    {{"--root", "DIR"},
     {"--home", "DIR"},
     {"--format", "FORMAT"},
     {"--drive", "DRIVE"},
     {"--option", "ID"},
     {"--strategy", "STRATEGY"},
     {"--with", "WHAT"}}};

}  // namespace tarvik::CommandLine
