#pragma once

#include "Platform/Basics/Path.h"
#include "hdiutil/Disk.h"
#include "hdiutil/SevenZip.h"

#include <string>
#include <string_view>
#include <vector>

/// Puts the files of volumes into folders.
namespace tarvik::hdiutil::Volumes {

struct Opened {
    std::string name;
    std::string kind;  ///< as property lists say it: "hfs"
    fs::path folder;   ///< where the files are

    bool operator==(const Opened&) const = default;
};

/// Opens the volume, or for APFS the volumes, of a source; each comes to lie in a new folder in `parent` with a name of
/// its own. @throws Failure in the Mac's words; what has been written until then stays for the caller to remove.
std::vector<Opened> open(const SevenZip::Source& source, Format format, const fs::path& parent);

/// The name under which a volume of that name is shown in a folder: one that can stand there.
std::string shownName(std::string_view name);

/// @throws Failure unless so many bytes are free where the folder is.
void requireSpace(const fs::path& folder, std::int64_t bytes);

}  // namespace tarvik::hdiutil::Volumes
