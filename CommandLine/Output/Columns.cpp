#include "CommandLine/Output/Columns.h"

#include "Platform/Text/Text.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace tarvik::CommandLine::Columns {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";
constexpr std::string_view ellipsis = "\xE2\x80\xA6";

/// Calls `visit(codePoint, bytes)` for each code point of valid UTF-8 until it returns false.
template <typename Visit>
void forEachCodePoint(std::string_view text, Visit&& visit) {
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t at = 0; at < length;) {
        const int32_t start = at;
        UChar32 point = 0;
        U8_NEXT_OR_FFFD(reinterpret_cast<const std::uint8_t*>(text.data()), at, length, point);
        if (!visit(point, text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(at - start)))) return;
    }
}

std::size_t widthOf(UChar32 point) {
    switch (u_charType(point)) {
        case U_NON_SPACING_MARK:
        case U_ENCLOSING_MARK:
        case U_FORMAT_CHAR:
            return 0;
        default:
            break;
    }
    const auto eastAsian = u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH);
    return eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1;
}

/// Controls, line and paragraph separators, and what turns the direction of the text around.
bool steersTerminal(UChar32 point) {
    switch (u_charType(point)) {
        case U_CONTROL_CHAR:
        case U_LINE_SEPARATOR:
        case U_PARAGRAPH_SEPARATOR:
            return true;
        default:
            return (point >= 0x202A && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
    }
}

std::string withoutControls(std::string_view text, bool keepsLineBreaks) {
    const auto valid = Text::displayable(text);
    std::string result;
    forEachCodePoint(valid, [&](UChar32 point, std::string_view bytes) {
        const bool stays = (point == '\n' && keepsLineBreaks) || !steersTerminal(point);
        result += stays ? bytes : replacement;
        return true;
    });
    return result;
}

}  // namespace

std::string printable(std::string_view text) {
    return withoutControls(text, true);
}

std::string oneLine(std::string_view text) {
    return withoutControls(text, false);
}

std::size_t width(std::string_view text) {
    std::size_t columns = 0;
    forEachCodePoint(text, [&](UChar32 point, std::string_view) {
        columns += widthOf(point);
        return true;
    });
    return columns;
}

std::string cut(std::string_view text, std::size_t columns) {
    if (width(text) <= columns) return std::string(text);
    if (columns == 0) return {};
    std::string result;
    std::size_t used = 1;  // the ellipsis
    forEachCodePoint(text, [&](UChar32 point, std::string_view bytes) {
        used += widthOf(point);
        if (used > columns) return false;
        result += bytes;
        return true;
    });
    result += ellipsis;
    return result;
}

std::string table(const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < columns.size(); ++column) {
        widths.push_back(width(columns[column].title));
        for (const auto& row : rows) widths.back() = std::max(widths.back(), width(row[column]));
    }
    std::string text;
    const auto addLine = [&](const auto& cellAt) {
        std::string line;
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const std::string& cell = cellAt(column);
            const std::string padding(widths[column] - width(cell), ' ');
            if (column > 0) line += "  ";
            line += columns[column].align == Align::left ? cell + padding : padding + cell;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    };
    addLine([&](std::size_t column) -> const std::string& { return columns[column].title; });
    for (const auto& row : rows) addLine([&](std::size_t column) -> const std::string& { return row[column]; });
    return text;
}

}  // namespace tarvik::CommandLine::Columns
