#pragma once

#include <string>
#include <vector>

namespace tarvik::test {

std::vector<std::string> linesOf(const std::string& text);
/// The cells of one line of a TSV text, without undoing escapes.
std::vector<std::string> cellsOf(const std::string& line);
/// The cells of the column `name`, in the order of the lines of a TSV text.
std::vector<std::string> columnOf(const std::string& tsv, const std::string& name);

}  // namespace tarvik::test
