#include "ditto/MessageText.h"

#include <fmt/format.h>

namespace tarvik::ditto::MessageText {

namespace {

constexpr std::size_t longestText = 8192;

unsigned byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

/// How many bytes the character at the front of `text` has; 0 when it is none.
std::size_t characterLength(std::string_view text) {
    const unsigned first = byteAt(text, 0);
    const unsigned second = byteAt(text, 1);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    // Left out: longer forms than needed, halves of surrogate pairs, and what lies beyond the last character.
    if (first < 0xC2 || first > 0xF4 || (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
        (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F))
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byteAt(text, i) & 0xC0) != 0x80) return 0;
    return length;
}

void appendReadable(std::string& result, std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            result += fmt::format("\\x{:02X}", byteAt(text, 0));
            text.remove_prefix(1);
        } else {
            result += text.substr(0, length);
            text.remove_prefix(length);
        }
    }
}

}  // namespace

std::string readable(std::string_view text) {
    std::string result;
    if (text.size() <= longestText) {
        appendReadable(result, text);
    } else {
        appendReadable(result, text.substr(0, longestText / 2));
        result += " … ";
        appendReadable(result, text.substr(text.size() - longestText / 2));
    }
    return result;
}

}  // namespace tarvik::ditto::MessageText
