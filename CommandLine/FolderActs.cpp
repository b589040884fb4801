#include "CommandLine/FolderActs.h"

#include "CommandLine/DriveActs.h"
#include "CommandLine/Outcome.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/WatchedRun.h"
#include "MovePlan/FolderMove.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

namespace tarvik::CommandLine::FolderActs {

namespace {

/// Tells in `outcome` what it comes to know, so that there is something to print when it throws.
void run(const Host& host, const Options& options, Outcome& outcome) {
    outcome.source = Files::standardized(options.path);
    outcome.label = outcome.source.filename();
    const auto drive = DriveActs::chosen(host, options.drive, options.verb);
    const auto plan = FolderMove::plan(host, options.path, drive);
    outcome = outcomeOf(plan);
    Terminal::confirm(FolderMove::confirmMove(plan, drive), options.yes);
    outcome = outcomeOf(runWatched(host, {plan}, drive.mountPath, false, options.format).front());
}

}  // namespace

void move(const Host& host, const Options& options) {
    Outcome outcome;
    try {
        run(host, options, outcome);
    } catch (const WrongUse&) {
        throw;
    } catch (const Failure& failure) {
        outcome.failure = failure.description();
    }
    finish(outcome, options.format);
}

}  // namespace tarvik::CommandLine::FolderActs
