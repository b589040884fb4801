#pragma once

#include "CommandLine/Grammar/Options.h"
#include "Platform/Machine/Host.h"

/// What the command does about removing applications, and about having them back. All block.
namespace tarvik::CommandLine::UninstallActs {

/// Lists what can be uninstalled, the applications of one vendor together, or tells all about the one that is named.
void apps(const Host& host, const Options& options);

/// Shows what belongs to an application and what of it would go. Changes nothing.
void plan(const Host& host, const Options& options);
/// The same, and moves it to the Trash once the user has agreed. @throws Failure with the sentence for the user when it
/// is refused, and when something has stayed.
void uninstall(const Host& host, const Options& options);

/// Lists the uninstalls of the past, or tells all about the one that is named.
void list(const Host& host, const Options& options);
/// Brings back what an uninstall has removed, once the user has agreed. @throws Failure when something cannot come
/// back.
void undo(const Host& host, const Options& options);

}  // namespace tarvik::CommandLine::UninstallActs
