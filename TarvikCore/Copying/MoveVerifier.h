#pragma once

#include "Copying/ChangeWatch.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <optional>
#include <string>

/// Decides whether a copy may replace its original, or stand for it in a backup: kinds, sizes, link texts and entry
/// counts are compared, entry by entry. Contents are not read. Everything here blocks; any thread. Nothing fails: all
/// that goes wrong becomes a reason.
namespace tarvik::MoveVerifier {

/// Which of the two volumes keeps attributes in files of their own. Those are no items, on either side: see
/// `AppleDouble`.
struct Volumes {
    bool sourceKeepsAppleDouble = false;
    bool destinationKeepsAppleDouble = false;

    static Volumes of(const fs::path& source, const fs::path& destination);
};

/// The first reason why the copy is not good, in words, or nothing when it is.
std::optional<std::string> failureReason(const Host& host, const fs::path& source, const fs::path& destination);
/// The same for volumes that are known.
std::optional<std::string> failureReason(const Host& host, const fs::path& source, const fs::path& destination,
                                         const Volumes& volumes);

/// The same without the count of entries, so that a socket, which no copy holds, does not stand against the copy.
std::optional<std::string> failureReasonByItem(const Host& host, const fs::path& source, const fs::path& destination);
std::optional<std::string> failureReasonByItem(const Host& host, const fs::path& source, const fs::path& destination,
                                               const Volumes& volumes);

/// The first reason why the copy is no good backup of a source that stays and may be in use: by item, without what has
/// changed or gone since the mark, which was made before the copy, and without what the copy tool leaves out
/// (`UncopiedItems`).
std::optional<std::string> failureReasonSince(const Host& host, const fs::path& source, const fs::path& destination,
                                              const ChangeWatch::Mark& mark);

}  // namespace tarvik::MoveVerifier
