#include "CommandLine/DedupeActs.h"

#include "CommandLine/DedupeTables.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "Dedupe/AppDedupeService.h"
#include "Dedupe/DedupeTexts.h"
#include "Platform/Basics/Failure.h"

namespace tarvik::CommandLine::DedupeActs {

namespace {

AppDedupePlan planOf(const Host& host) {
    return AppDedupeService::plan(host, AppDedupeService::applicationRoots(host));
}

template <typename Result>
void print(const Result& result, Format format) {
    Terminal::writeResult(format == Format::human ? DedupeTables::human(result)
                          : format == Format::tsv ? DedupeTables::tsv(result)
                                                  : DedupeTables::toml(result));
}

/// What has not begun when a signal comes stays where it is.
AppDedupeRunResult carryOut(const Host& host, const AppDedupePlan& plan) {
    const SignalGuard guard;
    return AppDedupeService::run(host, plan, false, SignalGuard::request());
}

}  // namespace

void list(const Host& host, Format format) {
    const AppDedupePlan plan = planOf(host);
    if (plan.groups.empty() && format == Format::human) return Terminal::say(DedupeTexts::nothingFound);
    print(plan, format);
}

void remove(const Host& host, const Options& options) {
    const AppDedupePlan plan = planOf(host);
    const bool isHuman = options.format == Format::human;
    if (plan.groups.empty()) {
        if (isHuman) return Terminal::say(DedupeTexts::nothingToRemove);
        return print(AppDedupeRunResult{.plan = plan}, options.format);
    }
    Terminal::confirm(DedupeTexts::confirmRemove(plan), options.yes);
    const AppDedupeRunResult result = carryOut(host, plan);
    print(result, options.format);
    if (isHuman)
        for (const auto& item : result.movedItems)
            if (item.error) Terminal::say(*item.error);
    const auto outcome = DedupeTexts::outcomeOf(result);
    if (outcome.hasFailed) throw Failure("CommandLine", 1, outcome.sentence);
    if (isHuman) Terminal::writeLine(outcome.sentence);
}

}  // namespace tarvik::CommandLine::DedupeActs
