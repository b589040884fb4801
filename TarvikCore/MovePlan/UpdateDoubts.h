#pragma once

#include "Applications/AppEntry.h"

#include <string>
#include <vector>

/// What an application is known to lose on a drive: its updates, or its start at login. Pure.
namespace tarvik::UpdateDoubts {

/// A sentence for each of these that concerns one of the applications, with their names; empty when none does. The
/// applications are those whose bundles would move.
std::vector<std::string> about(const std::vector<AppEntry>& moving);

/// Whether the application has something started for it at login, by a login item or by a list of launchd(8), which
/// names its program by an absolute path.
bool startsAtLogin(const AppEntry& entry);

}  // namespace tarvik::UpdateDoubts
