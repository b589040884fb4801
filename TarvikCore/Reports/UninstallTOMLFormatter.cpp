#include "Reports/UninstallTOMLFormatter.h"

#include "Reports/TomlLines.h"

namespace tarvik::UninstallTOMLFormatter {

std::string apps(const std::vector<AppRecord>& apps) {
    TomlLines report;
    for (const AppRecord& app : apps) {
        report.beginRecord("apps");
        report.text("name", app.displayName);
        report.text("path", app.bundlePath.native());
        report.text("kind", textOf(app.kind));
        report.text("bundleId", app.bundleIdentifier.value_or(""));
    }
    return report.joined();
}

std::string inspection(const AppRecord& app) {
    TomlLines report;
    report.text("name", app.displayName);
    report.text("path", app.bundlePath.native());
    report.text("kind", textOf(app.kind));
    report.text("bundleId", app.bundleIdentifier.value_or(""));
    report.text("version", app.version.value_or(""));
    report.text("developer", app.developer.value_or(""));
    report.truth("macAppStore", app.isMacAppStore);
    report.truth("loginItems", app.hasLoginItems);
    report.truth("systemExtension", app.hasSystemExtension);
    report.truth("symlink", app.isSymlink);
    report.truth("tarvikLauncher", app.isTarvikLauncher);
    report.text("externalTarget", app.externalTargetPath.value_or(fs::path()).native());
    return report.joined();
}

std::string plan(const AppUninstallPlan& plan) {
    TomlLines report;
    report.text("appPath", plan.app.bundlePath.native());
    report.number("totalBytes", plan.totalBytes);
    report.number("selectedBytes", plan.selectedBytes);
    report.array("warnings", plan.warnings);
    for (const UninstallCandidate& candidate : plan.candidates) {
        report.beginRecord("candidates");
        report.text("path", candidate.path.native());
        report.text("category", textOf(candidate.category));
        report.text("confidence", textOf(candidate.confidence));
        report.number("sizeBytes", candidate.sizeBytes);
        report.truth("defaultSelected", candidate.defaultSelected);
        report.text("reason", candidate.reason);
        report.truth("privileged", candidate.isPrivileged);
    }
    return report.joined();
}

std::string session(const AppUninstallSession& session) {
    TomlLines report;
    report.text("id", session.id);
    report.text("appPath", session.appPath.native());
    report.text("appName", session.appName);
    report.text("bundleId", session.bundleIdentifier.value_or(""));
    report.truth("dryRun", session.dryRun);
    report.array("forgottenReceipts", session.forgottenReceipts);
    for (const AppUninstallSession::MovedItem& item : session.movedItems) {
        report.beginRecord("items");
        report.text("originalPath", item.originalPath.native());
        report.text("category", textOf(item.category));
        report.number("sizeBytes", item.sizeBytes);
        report.truth("succeeded", item.succeeded);
        if (item.trashedTo) report.text("trashedTo", item.trashedTo->native());
        if (item.stashedTo) report.text("stashedTo", item.stashedTo->native());
    }
    return report.joined();
}

}  // namespace tarvik::UninstallTOMLFormatter
