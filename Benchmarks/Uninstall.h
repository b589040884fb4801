#pragma once

/// How long it takes to plan an uninstall, and to move much to the Trash.
namespace tarvik::UninstallSpeed {

/// Prints its figures, of `rounds` rounds each, for applications on a volume of its own. @throws std::exception
void measure(int rounds);

}  // namespace tarvik::UninstallSpeed
