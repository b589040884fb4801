#pragma once

#include "CommandLine/Output/Records.h"
#include "MovePlan/MoveJob.h"
#include "Platform/Basics/Path.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarvik::CommandLine {

/// Why an item stayed where it was when a signal came before its turn.
inline constexpr const char* notStarted = "Not started: the command was asked to end.";

/// How the move of one item ended, there or back.
struct Outcome {
    std::string label;
    fs::path source, destination;
    std::int64_t bytes = 0;
    /// Why it failed; empty when it is done.
    std::string failure;
    /// What a person reads when it is done.
    std::string sentence;
};

/// The outcome of a job that has ended.
Outcome outcomeOf(const MoveJob& job);

/// Prints the outcome of an act on one item. @throws Failure with the item's own when it failed.
void finish(const Outcome& outcome, Format format);
/// Prints the outcomes of an act on a list of items. @throws Failure with `summary` when one of them failed.
void finish(const std::vector<Outcome>& outcomes, Format format, const std::string& summary);

}  // namespace tarvik::CommandLine
