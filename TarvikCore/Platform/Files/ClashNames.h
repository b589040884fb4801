#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Names for an item whose own name is taken.
namespace tarvik::ClashNames {

/// `name` with `separator` and `number` before its extension: "Notes 2.txt", ".profile.3". Number 1 is the name itself.
/// At most `limit` bytes: the stem gives way first, and a character of valid UTF-8 is never cut in two. Pure.
std::string numbered(std::string_view name, int number, char separator, std::size_t limit);
/// `name` with `suffix` behind it, cut in the same way: "Music-1700000000". Pure.
std::string suffixed(std::string_view name, std::string_view suffix, std::size_t limit);

}  // namespace tarvik::ClashNames
