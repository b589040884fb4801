#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Names of items in archives, which anybody may have written. Pure.
namespace tarvik::packages::SafeName {

using Components = std::vector<std::string>;

/// What a name like "./Applications/Editor.app" is made of, without "." and empty components; none for the archive's
/// own folder. Nothing for a name that is absolute, climbs with "..", holds a NUL, or is longer than a Mac's paths and
/// names may be (PATH_MAX and NAME_MAX in <sys/syslimits.h>).
std::optional<Components> components(std::string_view name);
/// They as one relative path.
std::string joined(const Components& components);

}  // namespace tarvik::packages::SafeName
