#include "CommandLine/Outcome.h"

#include "CommandLine/Output/Terminal.h"
#include "MovePlan/FolderMove.h"
#include "Platform/Basics/Failure.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarvik::CommandLine {

namespace {

Record recordOf(const Outcome& outcome) {
    const bool isDone = outcome.failure.empty();
    return {
        {"label", outcome.label},
        {"source", outcome.source.native()},
        {"destination", outcome.destination.native()},
        {"bytes", outcome.bytes},
        {"status", std::string(isDone ? "done" : "failed")},
        {"description", isDone ? outcome.sentence : outcome.failure},
    };
}

}  // namespace

Outcome outcomeOf(const MoveJob& job) {
    Outcome outcome{job.label, job.source, job.destination, job.bytesTotal, {}, FolderMove::moved(job)};
    if (const auto* failed = job.status.get<JobStatus::Failed>()) outcome.failure = failed->description;
    return outcome;
}

void finish(const Outcome& outcome, Format format) {
    const bool isDone = outcome.failure.empty();
    if (format != Format::human) {
        Terminal::writeResult(format == Format::tsv ? tsv(recordOf(outcome)) : toml(recordOf(outcome)));
    } else if (isDone) {
        Terminal::writeLine(outcome.sentence);
    }
    if (!isDone) throw Failure("CommandLine", 1, outcome.failure);
}

void finish(const std::vector<Outcome>& outcomes, Format format, const std::string& summary) {
    std::vector<Record> records;
    records.reserve(outcomes.size());
    for (const auto& outcome : outcomes) records.push_back(recordOf(outcome));
    if (format == Format::tsv) Terminal::writeResult(tsv(namesOf(recordOf({})), records));
    if (format == Format::toml) Terminal::writeResult(toml("items", records));
    for (const auto& outcome : outcomes) {
        if (!outcome.failure.empty()) {
            Terminal::say(fmt::format("{}: {}", outcome.label, outcome.failure));
        } else if (format == Format::human) {
            Terminal::writeLine(outcome.sentence);
        }
    }
    const bool hasFailed =
        std::any_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) { return !outcome.failure.empty(); });
    if (hasFailed) throw Failure("CommandLine", 1, summary);
}

}  // namespace tarvik::CommandLine
