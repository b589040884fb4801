#include "UninstallRun/UninstallQuestions.h"

#include "Applications/ExternalTarget.h"
#include "Platform/Bundles/RunningAppsDetector.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/EnclosingBundles.h"
#include "Platform/Processes/ProcessTable.h"
#include "Platform/Text/Text.h"
#include "UninstallRun/AppUninstallError.h"
#include "UninstallRun/LaunchProgram.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <thread>
#include <utility>

namespace tarvik::UninstallQuestions {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds quitPause{100};
constexpr std::size_t mostNames = 6;

/// What runs on the machine, asked for once.
struct InUse {
    std::set<fs::path> bundles;
    std::set<fs::path> programs;

    bool holdsBundle(const fs::path& bundle) const { return RunningAppsDetector::isAmong(bundles, bundle); }
    bool holdsProgram(const fs::path& program) const {
        const auto real = Files::resolved(program);
        return programs.contains(program) || (real && programs.contains(*real));
    }
    bool holds(const fs::path& path) const { return holdsBundle(path) || holdsProgram(path); }
};

InUse inUseOn(const Host& host) {
    const auto programs = ProcessTable::programs();
    return {.bundles = RunningAppsDetector::bundlePaths(host), .programs = {programs.begin(), programs.end()}};
}

void add(std::vector<Running>& found, Running running) {
    if (std::none_of(found.begin(), found.end(), [&](const Running& other) { return other.path == running.path; }))
        found.push_back(std::move(running));
}

Running runningBundle(const Host& host, const fs::path& bundle, std::string name) {
    return {.path = bundle,
            .name = std::move(name),
            .canQuit = !RunningAppsDetector::runningInstances(host, bundle).empty()};
}

/// The paths by which the application may run, the one at which it really stands first.
std::vector<fs::path> placesOf(const AppRecord& app) {
    std::vector<fs::path> places;
    if (auto target = ExternalTarget::of(app)) places.push_back(std::move(*target));
    places.push_back(Files::standardized(app.bundlePath));
    return places;
}

bool isChosen(const UninstallCandidate& candidate, const std::optional<std::set<std::string>>& selectedPaths) {
    return selectedPaths ? selectedPaths->contains(candidate.path.native()) : candidate.defaultSelected;
}

/// The program that a candidate starts, or is; nothing when it is no agent's, daemon's or helper.
std::optional<fs::path> programOf(const Host& host, const UninstallCandidate& candidate) {
    if (candidate.category != UninstallCategory::launchAgents && candidate.category != UninstallCategory::launchDaemons)
        return std::nullopt;
    if (candidate.path.extension() == ".plist") return LaunchProgram::of(host, candidate.path);
    return candidate.path;
}

void addProgram(const Host& host, const InUse& inUse, const fs::path& program, std::vector<Running>& found) {
    const auto bundles = EnclosingBundles::of(program);
    if (!bundles.empty() && inUse.holdsBundle(bundles.front())) {
        add(found, runningBundle(host, bundles.front(), bundles.front().stem().native()));
    } else if (inUse.holdsProgram(program)) {
        add(found, {.path = program, .name = program.filename().native(), .isBareProgram = true});
    }
}

std::vector<std::string> namesOf(const std::vector<Running>& running) {
    std::vector<std::string> names;
    names.reserve(running.size());
    for (const Running& each : running) names.push_back(each.name);
    return names;
}

AppUninstallError stillRunning(const Running& running) {
    return AppUninstallError::refused(fmt::format("{} still runs. Quit it first.", running.name));
}

}  // namespace

Dialog confirm(const AppUninstallPlan& plan) {
    return {fmt::format("Uninstall {}?", plan.app.displayName),
            fmt::format("Will move {} items to Trash. This action moves files; it does not permanently delete them.",
                        plan.candidates.size()),
            {"Uninstall", "Cancel"}};
}

std::vector<std::string> leftBehind(const AppUninstallPlan& plan, const std::set<std::string>& selectedPaths) {
    const auto goes = [&](const fs::path& path) { return selectedPaths.contains(path.native()); };
    std::vector<std::string> sentences;
    for (const UninstallCandidate& candidate : plan.candidates) {
        if (candidate.category == UninstallCategory::receipts || !goes(candidate.path)) continue;
        const auto text = Files::linkText(candidate.path);
        if (!text) continue;
        const fs::path target = Files::standardized(candidate.path.parent_path() / *text);
        if (!goes(target))
            sentences.push_back(fmt::format("Only the link {} goes. What it leads to stays: {}",
                                            candidate.path.native(), target.native()));
    }
    return sentences;
}

std::vector<Running> running(const Host& host, const AppUninstallPlan& plan,
                             const std::optional<std::set<std::string>>& selectedPaths) {
    std::vector<Running> found;
    const InUse inUse = inUseOn(host);
    const bool takesApplication =
        std::any_of(plan.candidates.begin(), plan.candidates.end(), [&](const UninstallCandidate& candidate) {
            return candidate.category != UninstallCategory::receipts && isChosen(candidate, selectedPaths);
        });
    // An application that runs writes to its data, and from there to places that have gone.
    if (takesApplication) {
        for (const fs::path& place : placesOf(plan.app)) {
            if (!inUse.holdsBundle(place)) continue;
            add(found, runningBundle(host, place, plan.app.displayName));
            break;
        }
    }
    for (const UninstallCandidate& candidate : plan.candidates) {
        if (!isChosen(candidate, selectedPaths)) continue;
        if (const auto program = programOf(host, candidate)) addProgram(host, inUse, *program, found);
    }
    return found;
}

Dialog quitRunning(const std::vector<Running>& running) {
    const auto names = namesOf(running);
    std::vector<std::string> details;
    for (const Running& each : running)
        if (each.isBareProgram)
            details.push_back(goesOn(each));
        else if (!each.canQuit)
            details.push_back(fmt::format("{} cannot be quit from here: {}", each.name, each.path.native()));
    return {fmt::format("{} {} running", Text::counted(std::ssize(running), "item"), names.size() == 1 ? "is" : "are"),
            fmt::format("Removing what runs can lose its data.\n\n{}\n\nQuit automatically before uninstalling?",
                        Text::listed(names, mostNames)),
            {"Quit & Uninstall", "Cancel"},
            std::move(details)};
}

std::string goesOn(const Running& running) {
    return fmt::format("{} is started by the system and goes on until you log out: {}", running.name,
                       running.path.native());
}

Dialog confirmPutBack(const AppUninstallSession& session, const std::vector<UninstallUndo::Item>& items) {
    using State = UninstallUndo::Item::State;
    std::int64_t waiting = 0;
    std::vector<std::string> stuck;
    for (const UninstallUndo::Item& item : items) {
        if (item.state == State::waiting) ++waiting;
        if (item.state == State::stuck)
            stuck.push_back(fmt::format("{}: {}", Text::displayable(item.originalPath.native()), item.reason));
    }
    return {fmt::format("Put back {}?", session.appName),
            fmt::format("Will bring {} back to {}. Nothing that stands there is replaced.",
                        Text::counted(waiting, "item"), waiting == 1 ? "its old place" : "their old places"),
            {"Put Back", "Cancel"},
            std::move(stuck)};
}

void quit(const Host& host, const std::vector<Running>& running, std::chrono::duration<double> timeout) {
    for (const Running& each : running)
        if (each.canQuit && !RunningAppsDetector::quit(host, each.path, false, timeout)) throw stillRunning(each);
    std::vector<Running> others = running;
    std::erase_if(others, [](const Running& each) { return each.canQuit || each.isBareProgram; });
    const auto begin = steady_clock::now();
    while (!others.empty()) {
        const InUse inUse = inUseOn(host);
        std::erase_if(others, [&](const Running& each) { return !inUse.holds(each.path); });
        if (others.empty()) return;
        if (steady_clock::now() - begin >= timeout) throw stillRunning(others.front());
        std::this_thread::sleep_for(quitPause);
    }
}

}  // namespace tarvik::UninstallQuestions
