#pragma once

#include "Platform/Basics/Path.h"
#include "hdiutil/Attachment.h"

/// Attaches the image in a file to the machine in a folder.
namespace tarvik::hdiutil::Attach {

/// Where the image is attached already, as it was then told.
/// @throws Failure, whose words are the Mac's reason; nothing is left of the image then.
Attachment run(const fs::path& root, const fs::path& image);

}  // namespace tarvik::hdiutil::Attach
