#pragma once

#include "Copying/Disposal.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/Host.h"

#include <string_view>

/// Hidden places beside an item, under a `HiddenName`: where a copy of it grows, and from where something that belongs
/// at the item's place is disposed of.
namespace tarvik::HiddenPlace {

/// A hidden place that the caller alone writes to, marked as in use.
struct Claim {
    fs::path path;
    FileDescriptor held;
};
/// Takes a place for a copy, by an empty folder. @throws FileError, which tells of `goal`.
Claim claimForCopyTo(const fs::path& goal);
/// Whether a running act is making a copy that will stand at `goal`.
bool isCopyUnderWayTo(const fs::path& goal);

/// Disposes of an item under a hidden name as `MoverStasher` does of one that stands at `place`. It is at no moment
/// where a killed act would leave it in the way. Never fails.
Disposal::Outcome stash(const Host& host, const fs::path& hidden, const fs::path& place);
/// The same as `FileStash` does.
Disposal::Outcome moveAside(const Host& host, const fs::path& hidden, const fs::path& place, std::string_view reason);

}  // namespace tarvik::HiddenPlace
