#include "State/Health/HealthIssueRow.h"

#include "HealthRepair/HealthRepairStrategy.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

#include <QVariantList>
#include <QVariantMap>

namespace tarvik::HealthIssueRow {

namespace {

QVariantList repairsOf(const HealthIssue& issue) {
    QVariantList repairs;
    for (const auto& offer : HealthRepairStrategies::offers(issue.kind))
        repairs.push_back(QVariantMap{{QStringLiteral("label"), screenText(offer.label)},
                                      {QStringLiteral("strategy"), static_cast<int>(offer.strategy)}});
    return repairs;
}

}  // namespace

std::vector<Role<HealthIssue>> roles() {
    return {
        {"id", [](const HealthIssue& issue) -> QVariant { return uniqueText(key(issue)); }},
        {"kind",
         [](const HealthIssue& issue) -> QVariant { return screenText(HealthIssueKind::rawValue(issue.kind)); }},
        {"location", [](const HealthIssue& issue) { return QVariant::fromValue(FilePath(issue.location)); }},
        {"name", [](const HealthIssue& issue) -> QVariant { return screenText(lastComponent(issue.location)); }},
        {"locationText", [](const HealthIssue& issue) -> QVariant { return screenPath(issue.location); }},
        {"targetText",
         [](const HealthIssue& issue) -> QVariant {
             return issue.target ? QStringLiteral("→ ") + screenPath(*issue.target) : QString();
         }},
        {"detail", [](const HealthIssue& issue) -> QVariant { return screenText(issue.detail); }},
        {"sizeText",
         [](const HealthIssue& issue) -> QVariant {
             return issue.sizeBytes >= 1 ? screenText(SizeCalculator::format(issue.sizeBytes)) : QString();
         }},
        {"spaceText",
         [](const HealthIssue& issue) -> QVariant { return screenText(SizeCalculator::format(issue.sizeBytes)); }},
        {"tone", [](const HealthIssue& issue) -> QVariant { return toneOf(issue.kind); }},
        {"repairs", [](const HealthIssue& issue) -> QVariant { return repairsOf(issue); }},
    };
}

std::string key(const HealthIssue& issue) {
    return std::string(HealthIssueKind::rawValue(issue.kind)) + "\n" + issue.location.native() + "\n" +
           (issue.target ? issue.target->native() : std::string());
}

QString toneOf(HealthIssue::Kind kind) {
    using enum HealthIssueKind::Severity;
    switch (HealthIssueKind::severity(kind)) {
        case danger:
            return QStringLiteral("danger");
        case warning:
            return QStringLiteral("warning");
        case success:
            break;
    }
    return QStringLiteral("success");
}

QString iconOf(HealthIssue::Kind kind) {
    using enum HealthIssue::Kind;
    switch (kind) {
        case healthy:
            return QStringLiteral("seal");
        case dangling:
            return QStringLiteral("brokenLink");
        case empty:
            return QStringLiteral("emptyBundle");
        case corrupted:
            return QStringLiteral("warning");
        case reverted:
            return QStringLiteral("back");
        case orphan:
            return QStringLiteral("drive");
        case missingTrackedFiles:
            return QStringLiteral("file");
        case missingSpotlightLaunchers:
            return QStringLiteral("search");
        case brokenLauncher:
            return QStringLiteral("launcher");
        case signatureBroken:
            return QStringLiteral("signature");
        case unsafePrefsPlist:
            return QStringLiteral("sliders");
        case sandboxExternalSymlink:
            return QStringLiteral("shield");
    }
    return {};
}

}  // namespace tarvik::HealthIssueRow
