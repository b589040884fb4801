#include "Platform/Bundles/RunningAppsDetector.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/RunningApplications.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Processes/ProcessTable.h"
#include "Platform/Processes/Utf8Locale.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <optional>
#include <string>
#include <thread>
#include <unordered_set>

namespace tarvik::RunningAppsDetector {

namespace {

using Seconds = std::chrono::duration<double>;
using std::chrono::steady_clock;

constexpr std::string_view bundleSuffix = ".app";
constexpr std::string_view contents = "/Contents/";
constexpr std::chrono::milliseconds pause{200};

/// What the process list prints, wherever this program was started from; nothing when it cannot be run or its output is
/// no text.
std::string processList(const Host& host, const std::vector<std::string>& arguments = {"-axo", "comm,args"}) {
    // The tool cuts its lines to COLUMNS.
    const EnvironmentChange change = {{"COLUMNS", std::nullopt}, {"LC_ALL", Utf8Locale::name()}};
    return CommandRunner::run(host.tools.ps, arguments, std::nullopt, change).stdout;
}

/// The text with each run of spaces as one: columns are padded to their widest entry.
std::string withoutPadding(std::string_view line) {
    std::string text(line);
    const auto areSpaces = [](char left, char right) { return left == ' ' && right == ' '; };
    text.erase(std::unique(text.begin(), text.end(), areSpaces), text.end());
    return text;
}

/// How much of the beginning of `text` is one character of white space, in bytes; 0 when it is something else.
std::size_t leadingWhiteSpace(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) return first == ' ' || (first >= '\t' && first <= '\r') ? 1 : 0;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    return Text::trimmed(text.substr(0, length)).empty() ? length : 0;
}

/// What must follow a bundle's path: how long it is, or nothing when something else follows.
std::optional<std::size_t> endingAt(std::string_view text) {
    if (text.empty()) return 0;
    if (text.starts_with(contents)) return contents.size();
    const std::size_t space = leadingWhiteSpace(text);
    return space > 0 ? std::optional(space) : std::nullopt;
}

/// A path in a line, and where the line is read on.
struct Found {
    std::string_view path;
    std::size_t next = 0;
};

/// Looks for a path that ends before `end`. Where none begins at one slash, none begins at a later one.
std::optional<Found> pathAt(std::string_view line, std::size_t start, std::size_t end) {
    const std::string_view part = line.substr(0, end);
    // At least one character stands between the slash and the suffix.
    for (std::size_t suffix = part.find(bundleSuffix, start + 2); suffix != std::string_view::npos;
         suffix = part.find(bundleSuffix, suffix + 1)) {
        const std::size_t pathEnd = suffix + bundleSuffix.size();
        if (const auto ending = endingAt(line.substr(pathEnd)))
            return Found{line.substr(start, pathEnd - start), pathEnd + *ending};
    }
    return std::nullopt;
}

/// Adds the paths of a line, from one quotation mark to the next: none holds one.
void addPathsOf(std::string_view line, std::unordered_set<std::string_view>& paths) {
    for (std::size_t begin = 0; begin < line.size();) {
        const std::size_t end = std::min(line.find('"', begin), line.size());
        while (true) {
            const std::size_t start = line.substr(0, end).find('/', begin);
            const auto found = start == std::string_view::npos ? std::nullopt : pathAt(line, start, end);
            if (!found) break;
            paths.insert(found->path);
            begin = found->next;
        }
        begin = end + 1;
    }
}

/// Whether both paths, standardized, lead to one bundle.
bool areSameBundle(const fs::path& one, const fs::path& other) {
    if (one == other) return true;
    return Text::nameKey(one.filename().native()) == Text::nameKey(other.filename().native()) &&
           Files::isSameItem(Files::info(one), Files::info(other));
}

/// Adds what begins at a later slash of a path: a line's first slash may stand in another word. macOS's ps(1) cuts
/// the first of two columns to 16 bytes, so that a path in it runs on into the next: "/Applications/My /Applications/My
/// Editor.app".
void addPathsBehindSpaces(std::set<fs::path>& bundles) {
    std::set<fs::path> later;
    for (const fs::path& bundle : bundles) {
        const std::string& text = bundle.native();
        for (std::size_t space = text.find(" /"); space != std::string::npos; space = text.find(" /", space + 1))
            later.insert(text.substr(space + 1));
    }
    bundles.merge(later);
}

/// Looks until no instance is left, or the time is over. @returns whether none is left.
bool waitUntilGone(const Host& host, const fs::path& bundlePath, Seconds limit) {
    const auto begin = steady_clock::now();
    while (steady_clock::now() - begin < limit) {
        if (runningInstances(host, bundlePath).empty()) return true;
        std::this_thread::sleep_for(pause);
    }
    return false;
}

}  // namespace

std::set<fs::path> bundlePathsIn(const std::vector<std::string_view>& lines) {
    std::unordered_set<std::string_view> paths;
    for (const std::string_view line : lines) addPathsOf(line, paths);
    // Paths are compared component by component: most of the work is saved by putting them in order as texts first.
    std::vector<std::string_view> ordered(paths.begin(), paths.end());
    std::sort(ordered.begin(), ordered.end());
    std::set<fs::path> bundles;
    for (const std::string_view path : ordered) bundles.insert(bundles.end(), Files::standardized(path));
    return bundles;
}

std::vector<std::string_view> linesWithout(std::vector<std::string_view> lines,
                                           const std::vector<std::string_view>& others) {
    std::multiset<std::string> left;
    for (const std::string_view other : others) left.insert(withoutPadding(other));
    std::erase_if(lines, [&](std::string_view line) {
        const auto found = left.find(withoutPadding(line));
        if (found == left.end()) return false;
        left.erase(found);
        return true;
    });
    return lines;
}

std::set<fs::path> bundlePaths(const Host& host) {
    const std::string list = processList(host);
    const auto lineage = ProcessTable::lineage();
    const std::string own = processList(host, {"-o", "comm,args", "-p", fmt::format("{}", fmt::join(lineage, ","))});
    std::set<fs::path> bundles = bundlePathsIn(linesWithout(Text::lines(list), Text::lines(own)));
    addPathsBehindSpaces(bundles);
    for (const pid_t process : lineage) bundles.merge(bundlePathsIn({ProcessTable::programOf(process).native()}));
    for (const auto& application : host.runningApplications->running())
        bundles.insert(Files::standardized(application.bundlePath));
    for (const auto& bundle : host.runningApplications->bundlesInUse()) bundles.insert(Files::standardized(bundle));
    return bundles;
}

bool isAmong(const std::set<fs::path>& bundles, const fs::path& bundlePath) {
    const fs::path wanted = Files::standardized(bundlePath);
    return bundles.contains(wanted) || std::any_of(bundles.begin(), bundles.end(), [&](const fs::path& bundle) {
               return areSameBundle(bundle, wanted);
           });
}

bool isRunning(const Host& host, const fs::path& bundlePath) {
    return isAmong(bundlePaths(host), bundlePath);
}

bool containsProcess(const Host& host, std::string_view name) {
    const std::string list = processList(host);
    const auto lines = Text::lines(list);
    const std::string folded = Text::caseFolded(name);
    return std::any_of(lines.begin(), lines.end(),
                       [&](std::string_view line) { return Text::caseFolded(line).find(folded) != std::string::npos; });
}

std::vector<RunningApplication> runningInstances(const Host& host, const fs::path& bundlePath) {
    const fs::path standardized = Files::standardized(bundlePath);
    auto applications = host.runningApplications->running();
    std::erase_if(applications, [&](const RunningApplication& application) {
        return !areSameBundle(Files::standardized(application.bundlePath), standardized);
    });
    return applications;
}

bool quit(const Host& host, const fs::path& bundlePath, bool force, Seconds timeout, Seconds forcedTimeout) {
    const auto instances = runningInstances(host, bundlePath);
    if (instances.empty()) return true;
    for (const auto& instance : instances) host.runningApplications->terminate(instance);
    if (waitUntilGone(host, bundlePath, timeout)) return true;
    if (force) {
        for (const auto& instance : runningInstances(host, bundlePath))
            host.runningApplications->forceTerminate(instance);
        if (waitUntilGone(host, bundlePath, forcedTimeout)) return true;
    }
    return runningInstances(host, bundlePath).empty();
}

}  // namespace tarvik::RunningAppsDetector
