#pragma once

#include "Platform/Basics/Path.h"
#include "State/Apps/CheckedPaths.h"
#include "State/Lists/RecordListModel.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// A line of the tree of an application's data: a category, a file or folder in it, or how many more there are.
struct DataRow {
    enum class Kind { category, file, more };

    Kind kind = Kind::file;
    std::string key;
    std::string name;
    fs::path path;
    /// Of a category, what a user should know of such data, and what is in it.
    std::string help;
    std::string summary;
    /// Unknown until it is measured.
    std::optional<std::int64_t> bytes;
    int depth = 0;
    bool isDirectory = false;
    bool isLink = false;
    bool isOpen = false;
    /// Its contents are being read.
    bool isLoading = false;
    /// A link to a drive: it is not for the Trash.
    bool isLocked = false;
    CheckedPaths::State checked = CheckedPaths::State::none;

    static std::vector<Role<DataRow>> roles();
    static std::string keyOf(const DataRow& row) { return row.key; }
};

}  // namespace tarvik
