#include "CommandLine/FoundApps.h"

#include "Applications/AppChoice.h"
#include "CommandLine/Output/ProgressDisplay.h"
#include "Discovery/AppScanner.h"
#include "Discovery/InstalledAppsScanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Parallel.h"
#include "Platform/Files/Files.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tarvik::CommandLine {

namespace {

/// More at a time would only make a disk seek.
constexpr std::size_t measuredAtATime = 8;

}  // namespace

std::optional<fs::path> FoundApp::leadsTo() const {
    if (record.externalTargetPath)
        return Files::standardized(entry.bundlePath.parent_path() / *record.externalTargetPath);
    if (entry.isAlreadySymlinked) return Files::resolved(entry.bundlePath);
    return std::nullopt;
}

std::vector<AppEntry> findApps(const Host& host) {
    return AppScanner::discoverMetadata(host);
}

const AppEntry& chosenApp(const std::vector<AppEntry>& entries, const std::string& name, Options::Verb verb) {
    try {
        return AppChoice::named(entries, name);
    } catch (const Failure& failure) {
        throw WrongUse(failure.description(), std::string(usageOf(verb)));
    }
}

void measureEach(std::size_t count, std::string_view label, Format format,
                 const std::function<void(std::size_t)>& measure) {
    ProgressDisplay display(ProgressDisplay::outputForQuestion(format), std::string(label), ProgressUnit::items);
    const auto total = static_cast<std::int64_t>(count);
    std::atomic<std::int64_t> done = 0;
    display.progress({0, total});
    display.step("measuring");
    inParallel(count, measuredAtATime, [&](std::size_t index) {
        measure(index);
        display.progress({++done, total});
    });
}

std::vector<FoundApp> inspected(const Host& host, const std::vector<AppEntry>& entries, Format format) {
    std::vector<FoundApp> apps(entries.size());
    measureEach(entries.size(), "applications", format, [&](std::size_t index) {
        const auto& entry = entries[index];
        // One that has gone since it was found is shown with what is known of it.
        apps[index] = {AppScanner::computeSizes(host, entry),
                       InstalledAppsScanner::inspect(host, entry.bundlePath).value_or(AppRecord())};
    });
    return apps;
}

}  // namespace tarvik::CommandLine
