#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace tarvik::CommandLine {

/// What the command is told to do.
enum class Verb {
    drives,
    apps,
    links,
    launchers,
    moveApp,
    moveFolder,
    moveRestore,
    backupCreate,
    backupList,
    health,
    healthRepair,
    uninstall,
    uninstallApps,
    uninstallList,
    uninstallUndo,
    installInspect,
    installOptions,
    installPlan,
    dedupe
};

/// Each verb by its words, and how it is written. Pure; safe on every thread.
namespace Verbs {

struct Entry {
    /// Nothing for a verb that only prints what is known without a machine.
    std::optional<Verb> verb;
    /// "move app".
    std::string_view words;
    /// "tarvik move restore NAME|PATH...".
    std::string_view usage;
};

inline constexpr std::string_view completion = "completion";

/// In the order in which they are shown: those that begin with these words, "move" or "move app"; all without any.
std::vector<Entry> beginningWith(std::string_view words);

}  // namespace Verbs

/// How the command is written with this verb.
std::string_view usageOf(Verb verb);

}  // namespace tarvik::CommandLine
