#pragma once

namespace tarvik {

class ManyApps;

/// How quick the Uninstall tab of the window is.
namespace UninstallTab {

/// Prints its lines below those of the window.
void measure(const ManyApps& apps, int rounds);

}  // namespace UninstallTab

}  // namespace tarvik
