#pragma once

/// How quickly the window shows many applications, and how it answers meanwhile.
namespace tarvik::WindowSpeed {

/// Prints its figures, of `rounds` rounds each, for the window over a practice machine, drawn by the processor without
/// a display. @throws std::exception
void measure(int rounds);

}  // namespace tarvik::WindowSpeed
