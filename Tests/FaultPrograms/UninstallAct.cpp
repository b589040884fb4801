// What a tracer lets go wrong: one uninstall on a machine in a folder, of the application and of what else is named; or
// the way back of the newest one.
//
//     uninstall-act ROOT HOME uninstall BUNDLE DATA...
//     uninstall-act ROOT HOME undo
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "UninstallRun/AppUninstallRunner.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallUndo.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>

namespace tarvik {

namespace {

UninstallCategory categoryOf(const fs::path& path) {
    if (path.extension() == ".app") return UninstallCategory::executable;
    return path.parent_path().filename() == "Caches" ? UninstallCategory::caches
                                                     : UninstallCategory::applicationSupport;
}

AppUninstallPlan planOf(std::span<char*> paths) {
    AppUninstallPlan plan;
    plan.app.bundlePath = paths[0];
    plan.app.displayName = "Foo";
    plan.app.bundleIdentifier = "org.example.Foo";
    for (const char* path : paths)
        plan.candidates.push_back({.path = path,
                                   .category = categoryOf(path),
                                   .sizeBytes = 1,
                                   .defaultSelected = true,
                                   .isSymlink = Files::isSymbolicLink(path),
                                   .seen = Files::info(path)});
    return plan;
}

/// Whether all that was to go has gone.
bool uninstall(const Host& host, std::span<char*> paths) {
    const auto session = AppUninstallRunner::run(host, planOf(paths), UninstallSelection::everything, false,
                                                 std::nullopt, AppUninstallReporter::silent);
    return std::all_of(session.movedItems.begin(), session.movedItems.end(),
                       [](const auto& item) { return item.succeeded; });
}

/// Whether all that had gone is back.
bool undo(const Host& host) {
    const auto past = UninstallHistory::list(host);
    if (past.empty()) return false;
    const auto items = UninstallUndo::putBack(host, past.front(), AppUninstallReporter::silent);
    return std::all_of(items.begin(), items.end(),
                       [](const auto& item) { return item.state == UninstallUndo::Item::State::back; });
}

}  // namespace

}  // namespace tarvik

int main(int count, char** words) {
    using namespace tarvik;
    const std::span<char*> arguments(words, static_cast<std::size_t>(count));
    if (arguments.size() < 4) return 2;
    try {
        const Host host = Host::rootedAt(arguments[1], arguments[2]);
        const bool isUndo = std::string(arguments[3]) == "undo";
        return (isUndo ? undo(host) : uninstall(host, arguments.subspan(4))) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
