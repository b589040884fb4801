#include "Reports/TOMLFormatter.h"

#include "Reports/TomlLines.h"

namespace tarvik::TOMLFormatter {

std::string inspection(const InstallerInspection& inspection) {
    TomlLines report;
    report.text("source", inspection.sourcePath.native());
    report.text("kind", textOf(inspection.kind));
    report.array("warnings", inspection.warnings);
    report.beginTable("trust");
    report.text("status", inspection.trust.status);
    report.truth("hasScripts", inspection.trust.hasScripts);
    report.truth("hasPrivilegedPayload", inspection.trust.hasPrivilegedPayload);
    for (const InstallableItem& item : inspection.items) {
        report.beginRecord("items");
        report.text("kind", textOf(item.kind));
        report.text("path", item.path.native());
        report.text("label", item.label);
        report.number("sizeBytes", item.sizeBytes);
    }
    return report.joined();
}

std::string plan(const InstallerPlan& plan) {
    TomlLines report;
    report.text("source", plan.sourcePath.native());
    report.text("option", plan.optionID);
    report.text("targetDrive", plan.targetDrivePath.native());
    report.number("neededBytes", plan.neededBytes);
    report.array("warnings", plan.warnings);
    report.array("actions", plan.actions);
    return report.joined();
}

}  // namespace tarvik::TOMLFormatter
