#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCategory.h"
#include "Uninstall/UninstallConfidence.h"

#include <string>
#include <vector>

/// Where things of an application may stand, apart from its bundle: a fixed table of folders, each with the exact name
/// that the application's own thing bears there. Pure: nobody has looked whether it is there.
namespace tarvik::RelatedPlaces {

/// A thing with this name in this folder is the application's.
struct Place {
    enum class Match { wholeName, beginningOfName };
    /// What a regular file counts: what it takes on the disk, or how long it is.
    enum class FileSize { onDisk, length };

    fs::path folder;
    /// One component of a path, never "." or "..".
    std::string name;
    UninstallCategory category = UninstallCategory::applicationSupport;
    UninstallConfidence confidence = UninstallConfidence::high;
    std::string reason;
    bool defaultSelected = true;
    bool isPrivileged = false;
    Match match = Match::wholeName;
    FileSize fileSize = FileSize::onDisk;

    bool operator==(const Place&) const = default;
};

/// In the order of the plan: the user's home, then the Library of the machine. An identifier or a name that could stand
/// for anything but an item of its own gives none (see `DataName`).
std::vector<Place> of(const Host& host, const AppRecord& app);

}  // namespace tarvik::RelatedPlaces
