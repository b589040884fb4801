#include "Reports/UninstallTSVFormatter.h"

#include "Reports/TabbedLines.h"

#include <string_view>

namespace tarvik::UninstallTSVFormatter {

namespace {

std::string_view tabbed(bool value) {
    return value ? "true" : "false";
}

std::string tabbed(const std::optional<std::string>& text) {
    return text.value_or("-");
}

}  // namespace

std::string apps(const std::vector<AppRecord>& apps) {
    TabbedLines report;
    report.line({"app", "kind", "id", "name", "path"});
    for (const AppRecord& app : apps)
        report.line({"app", textOf(app.kind), tabbed(app.bundleIdentifier), app.displayName, app.bundlePath.native()});
    return report.joined();
}

std::string inspection(const AppRecord& app) {
    TabbedLines report;
    report.line({"inspect", app.bundlePath.native()});
    report.line({"kind", textOf(app.kind)});
    report.line({"name", app.displayName});
    report.line({"bundle-id", tabbed(app.bundleIdentifier)});
    report.line({"version", tabbed(app.version)});
    report.line({"developer", tabbed(app.developer)});
    report.line({"mac-app-store", tabbed(app.isMacAppStore)});
    report.line({"login-items", tabbed(app.hasLoginItems)});
    report.line({"system-extension", tabbed(app.hasSystemExtension)});
    report.line({"symlink", tabbed(app.isSymlink)});
    report.line({"tarvik-launcher", tabbed(app.isTarvikLauncher)});
    report.line({"external-target", app.externalTargetPath ? app.externalTargetPath->native() : "-"});
    return report.joined();
}

std::string plan(const AppUninstallPlan& plan) {
    TabbedLines report;
    report.line({"plan", plan.app.bundlePath.native(), std::to_string(plan.totalBytes)});
    for (const std::string& warning : plan.warnings) report.line({"warning", warning});
    for (const UninstallCandidate& candidate : plan.candidates)
        report.line({"candidate", textOf(candidate.category), textOf(candidate.confidence),
                     std::to_string(candidate.sizeBytes), tabbed(candidate.defaultSelected), candidate.path.native()});
    return report.joined();
}

std::string sessions(const std::vector<AppUninstallSession>& sessions) {
    TabbedLines report;
    report.line({"session", "id", "app", "dry", "items"});
    for (const AppUninstallSession& session : sessions)
        report.line({"session", session.id, session.appPath.native(), tabbed(session.dryRun),
                     std::to_string(session.movedItems.size())});
    return report.joined();
}

}  // namespace tarvik::UninstallTSVFormatter
