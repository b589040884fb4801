#pragma once

/// How long it takes to find applications and links, and to size them all.
namespace tarvik::Discovery {

/// Prints its figures, of `rounds` rounds each, for a practice machine on a volume of its own. @throws std::exception
void measure(int rounds);

}  // namespace tarvik::Discovery
