#pragma once

/// How long it takes to expand zip archives.
namespace tarvik::ArchiveSpeed {

/// Prints its figures, of `rounds` rounds each, for archives on a volume of its own. @throws std::exception
void measure(int rounds);

}  // namespace tarvik::ArchiveSpeed
