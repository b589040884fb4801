#pragma once

#include "Applications/AppEntry.h"
#include "Copying/ByteProgress.h"
#include "MovePlan/MoveRun.h"
#include "MovePlan/WayBack.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The way back of applications, and of several things at once, for every front: what is meant, what comes back with
/// another one, what is asked, what is run. All but the last three block.
namespace tarvik::AppRestore {

/// What is wanted back: what stands at a path, or an application.
using Wanted = std::variant<fs::path, AppEntry>;

/// Whether a name that a user has written is a path: it has a slash, or something stands there. Every other one is that
/// of an application.
bool isPath(std::string_view name);

/// The link or the launcher that stands for the application: at its bundle, or at a folder above it, up to the folders
/// of applications. An application in a moved folder comes back with the whole folder. @throws Failure with the
/// sentence for the user when there is none.
fs::path linkOf(const Host& host, const AppEntry& entry);

/// Something that was wanted and cannot come back.
struct Refused {
    /// What it is called.
    std::string name;
    fs::path place;
    /// Why, in the sentence for the user.
    std::string reason;

    bool operator==(const Refused&) const = default;
};

/// What comes back of what was wanted.
struct Plan {
    /// Measured, in the order in which they were wanted, but what lies inside of another one before it. Each is there
    /// once, however often and by whatever it was named: a launcher is left out when its application comes back with
    /// another one.
    std::vector<WayBack::Plan> waysBack;
    std::vector<Refused> refused;
    /// The links of the ones and the places of the others, as they were wanted.
    std::vector<fs::path> order;

    bool operator==(const Plan&) const = default;
};

/// Changes nothing. Once it is cancelled, the sizes come out too small. Any thread; never fails.
Plan plan(const Host& host, const std::vector<Wanted>& wanted, const Cancellation& cancellation = {});

/// The same for what is ticked in a list of applications: what no link stands for any more is dropped.
Plan planTicked(const Host& host, const std::vector<AppEntry>& ticked, const Cancellation& cancellation = {});

/// Why there is nothing to ask or to run, in the sentence for the user; nothing when something can come back. Pure.
std::optional<std::string> refusalOf(const Plan& plan);

/// Asks whether the ways back shall be gone, and tells which links no move has left, whose data stays and what cannot
/// come back. Pure.
Dialog confirm(const Plan& plan);

/// Why an item is not back, in the sentence for the user; nothing when it is.
using Result = std::optional<std::string>;

/// The way back that is being gone, by its index; called on the calling thread. May be empty.
using ItemCallback = std::function<void(std::size_t index)>;
/// The same with its progress; from a background thread too. May be empty.
using ItemProgressCallback = std::function<void(std::size_t index, const ByteProgress& progress)>;

/// Goes each way back in order; a failure does not stop the rest. Once it is cancelled, the item that is under way is
/// brought to its end, and no other one is begun. Blocks; any thread; never fails.
/// @returns the results of those that were begun.
std::vector<Result> restoreAll(const Host& host, const std::vector<WayBack::Plan>& waysBack, const ItemCallback& begins,
                               const ItemProgressCallback& progress, const Cancellation& stopAfterItem = {});

/// The sentence for the user at the end, which counts what was refused too. Pure.
MoveRun::Summary summary(const Plan& plan, const std::vector<Result>& results);

}  // namespace tarvik::AppRestore
