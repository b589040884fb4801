#pragma once

#include "Dedupe/AppDedupePlan.h"
#include "Platform/Basics/Dialog.h"

#include <string>

/// What the user reads about duplicate launchers, in the window and from the command. Pure.
namespace tarvik::DedupeTexts {

inline constexpr const char* purpose =
    "Remove duplicate launcher apps when a real local app with the same bundle id exists.";
inline constexpr const char* nothingFound = "No duplicate launchers found.";
inline constexpr const char* nothingToRemove = "No duplicate launchers to remove.";

/// "2 duplicates": how many of a group go.
std::string duplicates(const AppDedupeGroup& group);
/// Asks whether what the plan names shall go, and names it. The first button is "Remove".
Dialog confirmRemove(const AppDedupePlan& plan);

/// How a run ended: how many launchers have gone, or how many have stayed that were to go.
struct Outcome {
    std::string sentence;
    bool hasFailed = false;

    bool operator==(const Outcome&) const = default;
};
Outcome outcomeOf(const AppDedupeRunResult& result);

}  // namespace tarvik::DedupeTexts
