#include "CommandLine/Grammar/Verbs.h"

#include <array>
#include <string>

namespace tarvik::CommandLine {

namespace {

constexpr std::array<Verbs::Entry, 20> allVerbs = {{
    {Verb::drives, "drives", "tarvik drives"},
    {Verb::apps, "apps", "tarvik apps [NAME]"},
    {Verb::links, "links", "tarvik links"},
    {Verb::launchers, "launchers", "tarvik launchers [--repair]"},
    {Verb::moveApp, "move app", "tarvik move app NAME... --drive DRIVE [--no-data] [--quit-running] [--dry-run]"},
    {Verb::moveFolder, "move folder", "tarvik move folder PATH --drive DRIVE"},
    {Verb::moveRestore, "move restore", "tarvik move restore NAME|PATH..."},
    {Verb::backupCreate, "backup create", "tarvik backup create PATH... --drive DRIVE"},
    {Verb::backupList, "backup list", "tarvik backup list --drive DRIVE"},
    {Verb::health, "health", "tarvik health"},
    {Verb::healthRepair, "health repair", "tarvik health repair [PATH...] [--strategy STRATEGY]"},
    {Verb::uninstall, "uninstall",
     "tarvik uninstall NAME [--only-app] [--with receipts|launch-daemons|external-target|PATH]... [--quit-running] "
     "[--dry-run]"},
    {Verb::uninstallApps, "uninstall apps", "tarvik uninstall apps [NAME]"},
    {Verb::uninstallList, "uninstall list", "tarvik uninstall list [ID]"},
    {Verb::uninstallUndo, "uninstall undo", "tarvik uninstall undo ID"},
    {Verb::installInspect, "install inspect", "tarvik install inspect SOURCE"},
    {Verb::installOptions, "install options", "tarvik install options"},
    {Verb::installPlan, "install plan", "tarvik install plan SOURCE --drive DRIVE [--option ID]"},
    {Verb::dedupe, "dedupe", "tarvik dedupe [--remove]"},
    {std::nullopt, Verbs::completion, "tarvik completion SHELL"},
}};

}  // namespace

std::vector<Verbs::Entry> Verbs::beginningWith(std::string_view words) {
    std::vector<Entry> found;
    for (const auto& entry : allVerbs)
        if (words.empty() || entry.words == words || entry.words.starts_with(std::string(words) + " "))
            found.push_back(entry);
    return found;
}

std::string_view usageOf(Verb verb) {
    for (const auto& entry : allVerbs)
        if (entry.verb == verb) return entry.usage;
    return "tarvik";
}

}  // namespace tarvik::CommandLine
