#pragma once

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Text as users see it. Every function is pure and safe on every thread. Input that is no valid UTF-8 is taken as if
/// each bad byte were the replacement character, except where a function says otherwise.
namespace tarvik::Text {

/// Without Unicode white space and line breaks at both ends.
std::string trimmed(std::string_view text);
bool isValidUtf8(std::string_view bytes);
/// The UTF-8 of bytes that hold UTF-16 in this order, without a byte order mark; nothing when they hold none.
std::optional<std::string> fromUtf16(std::string_view bytes, std::endian order);
/// Valid UTF-8 for a screen: bad bytes become U+FFFD. Control characters stay.
std::string displayable(std::string_view bytes);
/// The lines of a text as views into it, without their line feeds. The last one need not end with one.
std::vector<std::string_view> lines(std::string_view text);
/// `text` with `replacement` for every `wanted`, from left to right and byte by byte: all other bytes stay as they are.
std::string replacing(std::string_view text, std::string_view wanted, std::string_view replacement);
/// The first `most` of `names`, and how many more there are: "Mail, Music and 3 more". Their bytes stay.
std::string listed(const std::vector<std::string>& names, std::size_t most);
/// The number of characters as a user counts them (extended grapheme clusters).
std::int64_t characterCount(std::string_view text);
/// The first `count` characters of `text`, and `text` without them.
std::string firstCharacters(std::string_view text, std::int64_t count);
std::string droppingCharacters(std::string_view text, std::int64_t count);
/// Lower case without regard to locale (Unicode default case folding), for comparisons.
std::string caseFolded(std::string_view text);
/// The same characters in composed form (NFC), for comparisons: what is no valid UTF-8 stays as it is.
std::string composed(std::string_view text);
/// What all names have in common that a volume which folds case and normal forms takes for one. What is no valid UTF-8
/// stays as it is.
std::string nameKey(std::string_view name);
/// Upper case without regard to locale, for names that are shown.
std::string upperCased(std::string_view text);
/// Lower case without regard to locale, for names of files: bytes that are no valid UTF-8 stay as they are.
std::string lowerCased(std::string_view text);
/// Whether `needle` occurs in `text`, case and accents as the user's locale sees them ignored. An empty one does.
bool localizedContains(std::string_view text, std::string_view needle);
/// Below, at or above 0: the order of two texts in the user's locale, case ignored. The C locale counts as English.
int localizedCompare(std::string_view left, std::string_view right);

/// Decimal text of a byte count: KB whole, MB with at most one decimal, GB with at most two, without trailing zeros,
/// thousands grouped. 0 is "Zero KB", 1 to 999 is "1 KB"; nothing larger than GB is used.
std::string byteCount(std::int64_t bytes);
/// "2026-11-15 17:45:43 +0000", in UTC.
std::string date(std::chrono::system_clock::time_point instant);
/// "2026-11-15T17:45:43Z", in UTC, whole seconds.
std::string isoDate(std::chrono::system_clock::time_point instant);
/// `count` and a noun: "1 item", "0 items", "2 items".
std::string counted(std::int64_t count, std::string_view singular);

}  // namespace tarvik::Text
