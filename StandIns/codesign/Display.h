#pragma once

#include "Platform/Basics/Path.h"

#include <string>

/// What a signature says of itself.
namespace tarvik::codesign::Display {

/// A line for each fact, more of them the higher `verbosity` is (0 to 3). Nothing is verified.
/// @throws SignatureFailure when the item has no signature
std::string describe(const fs::path& bundle, int verbosity);

}  // namespace tarvik::codesign::Display
