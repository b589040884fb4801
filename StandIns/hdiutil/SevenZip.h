#pragma once

#include "Platform/Basics/Path.h"
#include "hdiutil/Tool.h"

#include <string>

/// 7-Zip's program, which reads the disks, volumes and files of images. It is only ever asked to write to this program,
/// never to the disk: what it would do there with links and names is its own.
namespace tarvik::hdiutil::SevenZip {

using Tool::Sink;

/// What is listed or read: an image, opened as the type that is named ("Dmg", "HFS"), or, where none is, as what it is
/// found to be, from the outside in.
struct Source {
    fs::path file;
    std::string type{};
};

/// Hands over what it lists, in universal time. @returns whether all of it could be read.
/// @throws Failure when the program cannot be run; what the sink throws, which stops it.
bool list(const Source& source, const Sink& sink);
/// Hands over the bytes of all items in the order of the list, or of the one whose path is given. @returns whether all
/// of them could be read.
bool read(const Source& source, const std::string& item, const Sink& sink);

}  // namespace tarvik::hdiutil::SevenZip
