#include "Reports/TSVFormatter.h"

#include "Reports/TabbedLines.h"

namespace tarvik::TSVFormatter {

std::string options(const std::vector<InstallerOption>& options) {
    TabbedLines report;
    for (const InstallerOption& option : options) report.line({"option", option.id, option.label, option.strategy});
    return report.joined();
}

std::string inspection(const InstallerInspection& inspection) {
    TabbedLines report;
    report.line({"inspection", textOf(inspection.kind), inspection.sourcePath.native()});
    for (const std::string& warning : inspection.warnings) report.line({"warning", warning});
    for (const InstallableItem& item : inspection.items)
        report.line({"item", textOf(item.kind), std::to_string(item.sizeBytes), item.path.native()});
    return report.joined();
}

std::string plan(const InstallerPlan& plan) {
    TabbedLines report;
    report.line({"plan", plan.optionID, std::to_string(plan.neededBytes), plan.sourcePath.native()});
    for (const std::string& warning : plan.warnings) report.line({"warning", warning});
    for (const std::string& action : plan.actions) report.line({"action", action});
    return report.joined();
}

}  // namespace tarvik::TSVFormatter
