#pragma once

#include "CommandLine/Grammar/Format.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tarvik::CommandLine {

/// One result for a program to read: names and values in the order in which they are written.
using Value = std::variant<std::string, std::int64_t, bool, std::vector<std::string>>;
using Record = std::vector<std::pair<std::string, Value>>;

/// The names of a record's values.
std::vector<std::string> namesOf(const Record& record);

/// A header line of `names` and a line for each record, whose values stand in the same order. Within a value a tab is
/// written as \t, a line break as \n, a carriage return as \r and a backslash as \\; every other byte as it is.
/// A list is its texts with a line break between each two.
std::string tsv(const std::vector<std::string>& names, const std::vector<Record>& records);
/// The same for one record, which brings its names along.
std::string tsv(const Record& record);

/// An array of tables under `name`; an empty array when there are no records. TOML is UTF-8: bytes of a name that are
/// none are written as U+FFFD.
std::string toml(std::string_view name, const std::vector<Record>& records);
/// One record as the document's top-level keys.
std::string toml(const Record& record);

}  // namespace tarvik::CommandLine
