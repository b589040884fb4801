#pragma once

#include "Applications/AppIdentity.h"
#include "Applications/AppRecord.h"

#include <string>

/// The short lower-case name under which a program keeps its dotfiles and caches. Pure.
namespace tarvik::Slug {

/// The name of the executable, or else of the bundle's file without its extension, or else the display name: the first
/// that is not empty, in lower case.
std::string derive(const AppIdentity& identity);
/// The slug as the name of an application that came with another one.
std::string supplementalDisplayName(const AppRecord& record);

}  // namespace tarvik::Slug
