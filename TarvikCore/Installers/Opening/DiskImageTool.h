#pragma once

#include "Installers/Opening/DiskImageMount.h"
#include "Platform/Machine/Host.h"

#include <string_view>

/// What is said to the tool that attaches images, hdiutil(1), and what it answers.
namespace tarvik::DiskImageTool {

/// Reads what the tool says of the entities of an attached image into the mount: pure. Another shape of the list is no
/// failure, but names nothing. @returns whether the answer is a property list.
bool readAnswer(std::string_view answer, DiskImageMount& mount);

/// Asks for each mount point, then for each device, until one has gone. @returns whether one has.
bool detachOne(const Host& host, const DiskImageMount& mount);

}  // namespace tarvik::DiskImageTool
