#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Text in the fixed columns of a terminal. Pure; safe on every thread.
namespace tarvik::CommandLine::Columns {

/// Valid UTF-8 in which nothing steers a terminal: bad bytes and control characters become U+FFFD. Line breaks stay.
std::string printable(std::string_view text);
/// The same with line breaks replaced as well: what belongs on one line stays on one line.
std::string oneLine(std::string_view text);

/// The columns that a terminal takes for `text`: two for a wide character, none for a combining one.
std::size_t width(std::string_view text);
/// The beginning of `text` that fits into `columns`, with an ellipsis where something is cut off.
std::string cut(std::string_view text, std::size_t columns);

enum class Align { left, right };
struct Column {
    std::string title;
    Align align = Align::left;
};
/// Lines with aligned cells, titles first, two spaces between columns, nothing after the last cell of a line.
std::string table(const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows);

}  // namespace tarvik::CommandLine::Columns
