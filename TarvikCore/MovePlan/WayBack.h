#pragma once

#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The decisions around the way back of what a link or a launcher leads to, for every front: what is refused, what is
/// asked, what is told.
namespace tarvik::WayBack {

/// What would come back, and what is to be said of it.
struct Plan {
    fs::path link;
    fs::path target;
    /// Whether a move has left the link: it leads to a folder of this program on a drive, or is remembered.
    bool isOwn = true;
    /// The links by which data of an application stays on a drive.
    std::vector<fs::path> data;
    /// What is to come back, where somebody has measured it.
    std::int64_t bytes = 0;
    /// The drive that the target is on, and what tells it from another one that may take its place; see
    /// `DriveScanner::markOf`. Nothing when it is on none.
    std::optional<fs::path> drive;
    std::optional<std::string> driveMark;

    bool operator==(const Plan&) const = default;
};

/// The way back of what the link, or the launcher, at `path` leads to; for the launcher of an application in a moved
/// folder, that of the folder. Changes nothing and measures nothing, but looks at every item for what could not be
/// removed, so it blocks. @throws Failure with the sentence for the user when nothing stands at `path`, when it is no
/// link or a relative one, when its target or the drive with it is not there, and when the way back could only do harm.
Plan plan(const Host& host, const fs::path& path);

/// Both in bytes. Called from a background thread while a copy runs, and once from the calling thread at its end.
using ProgressCallback = std::function<void(std::int64_t copied, std::int64_t total)>;

/// Brings the item back that the user has been asked about. Blocks until it is there. @throws Failure with the sentence
/// for the user when the link leads elsewhere by now or another drive has taken the place of the one it led to, and as
/// `MoverEngine::restore`.
void run(const Host& host, const Plan& plan, const ProgressCallback& progress);

/// Asks whether the item shall come back. The first button is "Move Back".
Dialog confirm(const Plan& plan);

/// What the user should know before that, a sentence each: that no move has left the link, and what data stays.
std::vector<std::string> doubtsAbout(const Plan& plan);

/// What the user reads when the item is back: "Moved Music back to /home/Music."
std::string movedBack(const Plan& plan);

/// What is said of the data that an application leaves behind; empty when there is none.
std::string dataStays(const Plan& plan);

/// What is said of a link that no move has left.
std::string foreign(const fs::path& link);

/// What the user reads when the item of `link` is back: "Restored Music".
std::string restored(const fs::path& link);

}  // namespace tarvik::WayBack
