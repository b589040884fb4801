#pragma once

#include "Platform/Basics/Path.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The programs that read images for this one.
namespace tarvik::hdiutil::Tool {

using Sink = std::function<void(std::string_view)>;

/// From now on a signal to end lets `run` fail, so that everything is cleared up, instead of ending the process.
void letSignalsCancel();

/// Runs a program to its end and hands over what it prints, pieces in order; what it says of failures is dropped. Its
/// texts are UTF-8, its times universal. @returns its status.
/// @throws Failure when it cannot be run or the user wants no more; what the sink throws. The program is killed then.
int run(const fs::path& program, const std::vector<std::string>& arguments, const Sink& sink);

}  // namespace tarvik::hdiutil::Tool
