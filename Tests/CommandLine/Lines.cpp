#include "CommandLine/Lines.h"

#include "Platform/Text/Text.h"

#include <algorithm>

namespace tarvik::test {

std::vector<std::string> linesOf(const std::string& text) {
    const auto lines = Text::lines(text);
    return {lines.begin(), lines.end()};
}

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells(1);
    for (const char byte : line) {
        if (byte == '\t')
            cells.emplace_back();
        else
            cells.back() += byte;
    }
    return cells;
}

std::vector<std::string> columnOf(const std::string& tsv, const std::string& name) {
    std::vector<std::string> column;
    const auto lines = linesOf(tsv);
    if (lines.empty()) return column;
    const auto names = cellsOf(lines.front());
    const auto place = static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
    for (auto line = lines.begin() + 1; line != lines.end(); ++line) {
        const auto cells = cellsOf(*line);
        column.push_back(place < cells.size() ? cells[place] : "no such column");
    }
    return column;
}

}  // namespace tarvik::test
