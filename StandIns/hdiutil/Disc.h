#pragma once

#include "Platform/Basics/Path.h"

#include <string>

/// Images of discs, in the ISO 9660 format with or without what Rock Ridge and Joliet add.
namespace tarvik::hdiutil::Disc {

/// Puts the files of the disc into an empty folder, and nowhere else. @throws Failure.
void open(const fs::path& image, const fs::path& folder);

/// The volume's name, as its first descriptors tell it; empty when they do not.
std::string name(const fs::path& image);

}  // namespace tarvik::hdiutil::Disc
