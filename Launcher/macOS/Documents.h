#pragma once

#include <string>
#include <vector>

namespace launcher::Documents {

/// What this program was started to open: the paths of the files that were dropped on it or opened with it, and
/// addresses. The system tells that by Apple events, which it sends before it tells that the launch is over
/// (application:openURLs: in <AppKit/NSApplication.h>). Call once, on the main thread.
std::vector<std::string> given();

}  // namespace launcher::Documents
