#pragma once

#include "Program/Volume.h"

#include <string>
#include <string_view>

/// The extended attributes of the volume's items: those that its folder keeps for it, those in "._" files where it has
/// an exFAT volume's habits, and those by which tests set and read marks (`test::MacAttribute`). Failures are refusals:
/// ENODATA where there is none.
namespace tarvik::macvolume::Attributes {

std::string read(const Volume& volume, const std::string& place, const std::string& name);
/// `flags` as setxattr(2) takes them.
void write(Volume& volume, const std::string& place, const std::string& name, std::string_view value, int flags);
void remove(const Volume& volume, const std::string& place, const std::string& name);
/// Each name ended by a zero byte; those of marks are left out.
std::string names(const Volume& volume, const std::string& place);

}  // namespace tarvik::macvolume::Attributes
