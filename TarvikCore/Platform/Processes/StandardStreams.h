#pragma once

/// Standard input, output and error of this program.
namespace tarvik::StandardStreams {

/// Occupies those of the three that were closed when the program began, so that no file that is opened later gets a
/// stream's number and is written into. A program calls it first.
void occupyClosed() noexcept;

}  // namespace tarvik::StandardStreams
