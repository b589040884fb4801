#pragma once

#include <string>
#include <vector>

/// The locale for tools whose output is read: in most others they turn letters of names into question marks.
namespace tarvik::Utf8Locale {

/// The name of a locale of this system that writes UTF-8. No name is known everywhere: "C.UTF-8" is, on Linux and since
/// macOS 15; "en_US.UTF-8" is on every Mac, but not on every Linux.
std::string name();

/// The first of the names that this system knows; the last one when it knows none.
std::string firstKnown(const std::vector<std::string>& names);

}  // namespace tarvik::Utf8Locale
