#include "CommandLine/Acts.h"

#include "CommandLine/AppActs.h"
#include "CommandLine/AppMoveActs.h"
#include "CommandLine/BackupActs.h"
#include "CommandLine/DedupeActs.h"
#include "CommandLine/DriveActs.h"
#include "CommandLine/FolderActs.h"
#include "CommandLine/HealthActs.h"
#include "CommandLine/InstallActs.h"
#include "CommandLine/LauncherActs.h"
#include "CommandLine/LinkActs.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/RestoreActs.h"
#include "CommandLine/UninstallActs.h"
#include "Platform/Machine/FullDiskAccess.h"

namespace tarvik::CommandLine::Acts {

namespace {

using Verb = Options::Verb;

/// Whether the act looks at what is the user's, of which a Mac may keep some from the command.
bool looksAround(Verb verb) {
    return verb != Verb::drives && verb != Verb::backupList && verb != Verb::installOptions;
}

}  // namespace

void perform(const Host& host, const Options& options) {
    if (looksAround(options.verb) && FullDiskAccess::isMissing(host))
        Terminal::say(FullDiskAccess::loss() + " " + FullDiskAccess::remedy());
    switch (options.verb) {
        case Verb::drives:
            return DriveActs::list(host, options.format);
        case Verb::apps:
            return options.names.empty() ? AppActs::list(host, options.format)
                                         : AppActs::show(host, options.names.front(), options.format);
        case Verb::links:
            return LinkActs::list(host, options.format);
        case Verb::launchers:
            return options.repairs ? LauncherActs::repair(host, options) : LauncherActs::list(host, options.format);
        case Verb::moveApp:
            return options.isDryRun ? AppMoveActs::plan(host, options) : AppMoveActs::move(host, options);
        case Verb::moveFolder:
            return FolderActs::move(host, options);
        case Verb::moveRestore:
            return RestoreActs::restore(host, options);
        case Verb::backupCreate:
            return BackupActs::create(host, options);
        case Verb::backupList:
            return BackupActs::list(host, options);
        case Verb::health:
            return HealthActs::check(host, options.format);
        case Verb::healthRepair:
            return HealthActs::repair(host, options);
        case Verb::uninstall:
            return options.isDryRun ? UninstallActs::plan(host, options) : UninstallActs::uninstall(host, options);
        case Verb::uninstallApps:
            return UninstallActs::apps(host, options);
        case Verb::uninstallList:
            return UninstallActs::list(host, options);
        case Verb::uninstallUndo:
            return UninstallActs::undo(host, options);
        case Verb::installInspect:
            return InstallActs::inspect(host, options);
        case Verb::installOptions:
            return InstallActs::list(host, options.format);
        case Verb::installPlan:
            return InstallActs::plan(host, options);
        case Verb::dedupe:
            return options.removes ? DedupeActs::remove(host, options) : DedupeActs::list(host, options.format);
    }
}

}  // namespace tarvik::CommandLine::Acts
