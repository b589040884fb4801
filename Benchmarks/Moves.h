#pragma once

#include <cstddef>

/// How long moves, and the steps of which they consist, take beside the tools that one would use instead.
namespace tarvik::Moves {

/// Prints its figures, of `rounds` rounds each, for a tree of `files` files on volumes of its own.
/// @throws std::exception
void measure(std::size_t files, int rounds);

}  // namespace tarvik::Moves
