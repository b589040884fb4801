#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "State/Lists/RecordListModel.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvik {

/// A folder that is often large, offered as the source of a move.
struct QuickPick {
    std::string label;
    fs::path path;
    /// The path as the user knows it, with "~" for the home folder.
    std::string pathText;
    /// Nothing while it has not been measured.
    std::optional<std::int64_t> bytes = std::nullopt;

    /// The common candidates below the user's home that exist, in their fixed order. Looks at the disk.
    static std::vector<QuickPick> suggestions(const Host& host);
    static std::vector<Role<QuickPick>> roles();
    static std::string key(const QuickPick& pick) { return pick.path.native(); }

    bool operator==(const QuickPick&) const = default;
};

}  // namespace tarvik
