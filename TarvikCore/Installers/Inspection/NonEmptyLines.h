#pragma once

#include <functional>
#include <string_view>

/// The lines of what a tool or a person has written, without the empty ones. A line ends at each of the line breaks of
/// Unicode: U+000A to U+000D, U+0085, U+2028 and U+2029.
namespace tarvik::NonEmptyLines {

/// Gives each line of `text`, which is UTF-8, in its order, without its line break. Pure but for `use`.
void forEach(std::string_view text, const std::function<void(std::string_view line)>& use);

}  // namespace tarvik::NonEmptyLines
