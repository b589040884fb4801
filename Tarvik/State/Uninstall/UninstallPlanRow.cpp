#include "State/Uninstall/UninstallPlanRow.h"

#include "Applications/DataPathSize.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarvik {

namespace {

using PlanRow = UninstallPlanRow;

/// Such things take no space that is worth a figure.
bool hasSize(UninstallCategory category) {
    return category != UninstallCategory::receipts && category != UninstallCategory::installerSession;
}

bool isItem(UninstallCategory category) {
    return category != UninstallCategory::receipts;
}

QString iconFor(const UninstallCandidate& candidate) {
    if (candidate.category == UninstallCategory::receipts) return QStringLiteral("signature");
    const bool isLink =
        candidate.isSymlink || (candidate.seen && candidate.seen->type == Files::ItemType::symbolicLink);
    if (isLink) return QStringLiteral("link");
    if (candidate.category == UninstallCategory::executable) return QStringLiteral("apps");
    if (candidate.category == UninstallCategory::installerSession) return QStringLiteral("clock");
    const bool isFolder =
        candidate.seen ? candidate.seen->type == Files::ItemType::folder : !candidate.path.has_extension();
    return isFolder ? QStringLiteral("folder") : QStringLiteral("file");
}

PlanRow sectionRow(UninstallCategory category, const std::vector<UninstallCandidate>& candidates,
                   const std::set<std::string>& checked, bool isOpen) {
    PlanRow row{.kind = PlanRow::Kind::section, .category = category, .isOpen = isOpen};
    row.count = static_cast<std::int64_t>(candidates.size());
    for (const UninstallCandidate& candidate : candidates) row.sizeBytes += candidate.sizeBytes;
    const auto ticked = std::count_if(candidates.begin(), candidates.end(), [&](const UninstallCandidate& candidate) {
        return checked.contains(candidate.path.native());
    });
    if (ticked > 0) row.checked = ticked == row.count ? PlanRow::Checked::all : PlanRow::Checked::some;
    return row;
}

PlanRow candidateRow(const UninstallCandidate& candidate, const std::set<std::string>& checked, const fs::path& home) {
    PlanRow row{.kind = PlanRow::Kind::candidate, .category = candidate.category};
    if (checked.contains(candidate.path.native())) row.checked = PlanRow::Checked::all;
    row.sizeBytes = candidate.sizeBytes;
    row.path = candidate.path;
    row.pathText = DataPathSize{candidate.path, 0}.displayPath(home);
    row.reason = candidate.reason;
    row.iconName = iconFor(candidate);
    row.isPrivileged = candidate.isPrivileged;
    return row;
}

QString textOfSize(std::int64_t bytes) {
    return screenText(SizeCalculator::format(bytes));
}

QString detailOf(const PlanRow& row) {
    if (row.kind == PlanRow::Kind::candidate) return screenText(row.reason);
    return screenText(Text::counted(row.count, "item")) + QStringLiteral(" · ") + textOfSize(row.sizeBytes);
}

}  // namespace

std::vector<UninstallPlanRow> UninstallPlanRow::list(const AppUninstallPlan& plan, const std::set<std::string>& checked,
                                                     const std::set<UninstallCategory>& open, const fs::path& home) {
    std::vector<UninstallPlanRow> rows;
    for (const auto& [category, candidates] : plan.grouped()) {
        const bool isOpen = open.contains(category);
        rows.push_back(sectionRow(category, candidates, checked, isOpen));
        if (!isOpen) continue;
        for (const UninstallCandidate& candidate : candidates) rows.push_back(candidateRow(candidate, checked, home));
    }
    return rows;
}

std::vector<Role<UninstallPlanRow>> UninstallPlanRow::roles() {
    return {
        {"kind",
         [](const PlanRow& row) -> QVariant {
             return row.kind == Kind::section ? QStringLiteral("section") : QStringLiteral("candidate");
         }},
        {"category", [](const PlanRow& row) -> QVariant { return static_cast<int>(row.category); }},
        {"rowId", [](const PlanRow& row) -> QVariant { return uniqueText(row.path.native()); }},
        {"name",
         [](const PlanRow& row) -> QVariant {
             return screenText(row.kind == Kind::section ? labelOf(row.category) : row.pathText);
         }},
        {"detail", [](const PlanRow& row) -> QVariant { return detailOf(row); }},
        {"sizeText",
         [](const PlanRow& row) -> QVariant {
             return row.kind == Kind::candidate && hasSize(row.category) ? textOfSize(row.sizeBytes) : QString();
         }},
        {"iconName", [](const PlanRow& row) -> QVariant { return row.iconName; }},
        {"itemPath",
         [](const PlanRow& row) -> QVariant {
             return isItem(row.category) ? QVariant::fromValue(FilePath(row.path)) : QVariant();
         }},
        {"isPrivileged", [](const PlanRow& row) -> QVariant { return row.isPrivileged; }},
        {"checkState",
         [](const PlanRow& row) -> QVariant {
             if (row.checked == Checked::none) return static_cast<int>(Qt::Unchecked);
             return static_cast<int>(row.checked == Checked::all ? Qt::Checked : Qt::PartiallyChecked);
         }},
        {"isOpen", [](const PlanRow& row) -> QVariant { return row.isOpen; }},
    };
}

std::string UninstallPlanRow::key(const UninstallPlanRow& row) {
    const std::string category(textOf(row.category));
    return row.kind == Kind::section ? category : category + "\n" + row.path.native();
}

}  // namespace tarvik
