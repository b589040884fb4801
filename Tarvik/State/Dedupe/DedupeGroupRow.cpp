#include "State/Dedupe/DedupeGroupRow.h"

#include "Dedupe/DedupeTexts.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

#include <QVariantList>
#include <QVariantMap>

namespace tarvik::DedupeGroupRow {

namespace {

QVariantList removedOf(const AppDedupeGroup& group) {
    QVariantList removed;
    for (const AppDedupeItem& item : group.remove)
        removed.push_back(
            QVariantMap{{QStringLiteral("pathText"), screenPath(item.path)},
                        {QStringLiteral("sizeText"), screenText(SizeCalculator::format(item.sizeBytes))},
                        {QStringLiteral("targetText"),
                         item.targetPath ? QStringLiteral("target: ") + screenPath(*item.targetPath) : QString()}});
    return removed;
}

}  // namespace

std::vector<Role<AppDedupeGroup>> roles() {
    return {
        {"name", [](const AppDedupeGroup& group) -> QVariant { return screenText(group.displayName); }},
        {"identifier", [](const AppDedupeGroup& group) -> QVariant { return screenText(group.bundleIdentifier); }},
        {"duplicatesText",
         [](const AppDedupeGroup& group) -> QVariant { return screenText(DedupeTexts::duplicates(group)); }},
        {"reason", [](const AppDedupeGroup& group) -> QVariant { return screenText(group.reason); }},
        {"keep", [](const AppDedupeGroup& group) { return QVariant::fromValue(FilePath(group.keep.path)); }},
        {"keepText", [](const AppDedupeGroup& group) -> QVariant { return screenPath(group.keep.path); }},
        {"keepSizeText",
         [](const AppDedupeGroup& group) -> QVariant {
             return screenText(SizeCalculator::format(group.keep.sizeBytes));
         }},
        {"removed", [](const AppDedupeGroup& group) -> QVariant { return removedOf(group); }},
    };
}

std::string key(const AppDedupeGroup& group) {
    return group.bundleIdentifier;
}

}  // namespace tarvik::DedupeGroupRow
