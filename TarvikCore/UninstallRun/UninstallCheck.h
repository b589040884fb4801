#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCandidate.h"

#include <optional>
#include <string>

/// The last look at an item before an uninstall takes it.
namespace tarvik::UninstallCheck {

/// Why the item stays: what stands at its path is not what was found there when the uninstall was planned, or holds the
/// records of this program. Nothing when it may go, and when nothing stands there. Of a candidate that does not say
/// what was seen, only a mount point and the applications themselves can be told. A few status calls, and the property
/// list of a bundle; any thread; never fails.
std::optional<std::string> reasonToStay(const Host& host, const AppRecord& app, const UninstallCandidate& candidate);

}  // namespace tarvik::UninstallCheck
