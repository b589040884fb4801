#pragma once

#include "Applications/AppIdentity.h"

/// Decides whether what is found under an application's slug is really its own.
namespace tarvik::SlugDataEligibility {

/// Not for applications that share their slug with a command-line program, and not for handlers of URLs, which are
/// named after the program that they open. Pure.
bool includesDotfileAndNodeCaches(const AppIdentity& identity);

}  // namespace tarvik::SlugDataEligibility
