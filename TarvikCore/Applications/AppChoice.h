#pragma once

#include "Applications/AppEntry.h"

#include <string_view>
#include <vector>

/// Picks one application of a list, by rules that every front shares. Safe on every thread.
namespace tarvik::AppChoice {

/// The application that `wanted` names: its display name, its bundle identifier, the name of its bundle with or without
/// ".app", or its path. What fits to the letter goes before what fits without regard to case. A relative path is taken
/// from the working directory; links in a path are followed, so that the place an application was moved to names it
/// too. @throws Failure with the sentence for the user when no application or more than one fits.
const AppEntry& named(const std::vector<AppEntry>& entries, std::string_view wanted);

}  // namespace tarvik::AppChoice
