#pragma once

#include "hdiutil/ImageFile.h"

/// The image format of the Mac: a disk in pieces, a property list that tells where they lie, and a block that begins
/// with "koly" at the end of the file.
namespace tarvik::hdiutil::CompressedImage {

/// Whether the file is one.
bool isOne(const ImageFile& image);
/// Whether its contents are encrypted, in either of the two forms.
bool isEncrypted(const ImageFile& image);
/// @throws Failure in the Mac's words when a licence has to be agreed to, which only somebody at a terminal can, or
/// when the pieces are not those that the image was made of.
void check(const ImageFile& image);

}  // namespace tarvik::hdiutil::CompressedImage
