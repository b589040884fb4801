#pragma once

#include "Platform/Machine/Host.h"
#include "UninstallRun/AppUninstallSession.h"

#include <optional>
#include <string>
#include <vector>

/// The uninstalls of the past, for a user who wants something back: those with a record, and those that have
/// only their journal, since they were interrupted or their record is damaged. Every operation blocks; any thread;
/// nothing fails.
namespace tarvik::UninstallHistory {

/// The machine to look at past uninstalls on, here and with `UninstallUndo::look`: its silent volumes are noted, which
/// are only asked for when there is a past at all.
Host knownMachine(const Host& host);

/// The newest first. One that is under way is not among them. The `error` of an item that has stayed is the reason why,
/// where the run knew one. What is on a silent volume of the host is not
/// asked for; see `SilentVolumes`.
std::vector<AppUninstallSession> list(const Host& host);
std::optional<AppUninstallSession> find(const Host& host, const std::string& id);

}  // namespace tarvik::UninstallHistory
