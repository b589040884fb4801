#pragma once

#include <string_view>

/// How the user's language orders and finds texts. The locale is the `UserLocale`, is read once, and is English
/// where there is none. Both texts are valid UTF-8. Safe on every thread.
namespace tarvik::UserCollation {

/// Below, at or above 0: the order of two texts, case ignored.
int compare(std::string_view left, std::string_view right);
/// Whether `needle` occurs in `text`, case and accents ignored. One without any letter that counts always does.
bool contains(std::string_view text, std::string_view needle);

}  // namespace tarvik::UserCollation
