#pragma once

#include "CommandLine/Grammar/CommandDescription.h"

#include <string>

/// The manual page tarvik(1), in the man macros of groff_man(7), which mandoc and every other formatter know too.
///
/// Verbs, options and their texts are those of --help; only what a reader needs beyond them is written here. Pure; safe
/// on every thread.
namespace tarvik::CommandLine::ManPage {

std::string of(const CommandDescription& command);

}  // namespace tarvik::CommandLine::ManPage
