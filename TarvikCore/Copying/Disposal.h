#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <string>

/// The way out that `MoverStasher` and `FileStash` share.
namespace tarvik::Disposal {

/// How a disposal ended, and where the item stands since.
struct Outcome {
    enum class End {
        nothing,   ///< there was nothing to dispose of
        trashed,   ///< in the Trash
        setAside,  ///< in `.TarvikTrash`
        stayed,    ///< where it was
    };
    End end = End::nothing;
    fs::path place;

    bool operator==(const Outcome&) const = default;
};

/// Moves the item to the Trash; when the Trash refuses, into `.TarvikTrash` beside `place` under its name with `suffix`
/// added. `place` is where it stands, or where it belongs when it stands somewhere else for the moment. Nothing is ever
/// replaced. Never fails: what can be moved nowhere stays where it is.
Outcome dispose(const Host& host, const fs::path& item, const fs::path& place, const std::string& suffix) noexcept;

}  // namespace tarvik::Disposal
