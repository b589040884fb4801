#pragma once

#include <cstddef>

/// How long it takes to install an application on a drive, beside a copy that is compared afterwards.
namespace tarvik::InstallSpeed {

/// Prints its figures, of `rounds` rounds each, for an application of `files` files on volumes of its own.
/// @throws std::exception
void measure(std::size_t files, int rounds);

}  // namespace tarvik::InstallSpeed
