#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>

/// Reads what the program has written with tools that share nothing with it.
namespace tarvik::test::OtherReaders {

/// The name of a tool that is not installed, with words for a skipped test; nothing when all are here.
std::optional<std::string> missing();

/// What `bsdtar` finds in a tree: a line for each entry with its kind, permissions, size, times, link text and digest.
std::string tree(const fs::path& root);
/// What Python finds in a JSON file, or in a property list, keys in order.
std::string json(const fs::path& file);
std::string propertyList(const fs::path& file);
/// The text under a key of a property list, as `plistutil` finds it.
std::string propertyListText(const fs::path& file, const std::string& key);
/// What Python prints. All throw std::runtime_error with the tool's words when it fails.
std::string python(const std::string& script, const fs::path& argument);

}  // namespace tarvik::test::OtherReaders
