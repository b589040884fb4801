#pragma once

#include "Platform/Basics/Path.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The files in which archives keep an item's extended attributes and resource fork: AppleDouble, of RFC 1740, with the
/// list of attributes that <sys/xattr.h> and copyfile(3) of macOS put into its Finder information.
namespace tarvik::ditto::AttributeFile {

using List = std::vector<std::pair<std::string, std::string>>;

/// The attributes by their names on a Mac. What is broken in the bytes is left out. Pure.
List read(std::string_view bytes);

/// Gives the attributes to the item itself, a link not followed, by names that this system knows. @returns false where
/// its file system has no place for them.
bool give(const List& attributes, const fs::path& item);

}  // namespace tarvik::ditto::AttributeFile
