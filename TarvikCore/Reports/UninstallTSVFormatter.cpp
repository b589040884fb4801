#include "Reports/UninstallTSVFormatter.h"

#include <fmt/format.h>

#include <initializer_list>
#include <string_view>
#include <utility>

namespace tarvik::UninstallTSVFormatter {

namespace {

/// One line; none of the fields is escaped.
class TabbedText {
public:
    void line(std::initializer_list<std::string_view> fields) {
        m_text += fmt::format("{}\n", fmt::join(fields, "\t"));
    }
    std::string text() { return std::move(m_text); }

private:
    std::string m_text;
};

std::string_view tabbed(bool value) {
    return value ? "true" : "false";
}

std::string tabbed(const std::optional<std::string>& text) {
    return text.value_or("-");
}

}  // namespace

std::string apps(const std::vector<AppRecord>& apps) {
    TabbedText report;
    report.line({"app", "kind", "id", "name", "path"});
    for (const AppRecord& app : apps)
        report.line({"app", textOf(app.kind), tabbed(app.bundleIdentifier), app.displayName, app.bundlePath.native()});
    return report.text();
}

std::string inspection(const AppRecord& app) {
    TabbedText report;
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
    return report.text();
}

std::string plan(const AppUninstallPlan& plan) {
    TabbedText report;
    report.line({"plan", plan.app.bundlePath.native(), std::to_string(plan.totalBytes)});
    for (const std::string& warning : plan.warnings) report.line({"warning", warning});
    for (const UninstallCandidate& candidate : plan.candidates)
        report.line({"candidate", textOf(candidate.category), textOf(candidate.confidence),
                     std::to_string(candidate.sizeBytes), tabbed(candidate.defaultSelected), candidate.path.native()});
    return report.text();
}

std::string sessions(const std::vector<AppUninstallSession>& sessions) {
    TabbedText report;
    report.line({"session", "id", "app", "dry", "items"});
    for (const AppUninstallSession& session : sessions)
        report.line({"session", session.id, session.appPath.native(), tabbed(session.dryRun),
                     std::to_string(session.movedItems.size())});
    return report.text();
}

}  // namespace tarvik::UninstallTSVFormatter
