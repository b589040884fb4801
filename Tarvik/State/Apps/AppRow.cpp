#include "State/Apps/AppRow.h"

#include "Platform/Text/Text.h"
#include "State/Lists/AppIcons.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

namespace tarvik {

namespace {

QString sizeText(std::int64_t bytes) {
    return screenText(Text::byteCount(bytes));
}

/// Of what lies in the bundle: unknown while that is not there.
QString bundleSizeText(const AppRow& row, std::int64_t bytes) {
    return row.isAbsent ? QStringLiteral("—") : sizeText(bytes);
}

QString riskText(RiskLevel risk) {
    switch (risk) {
        case RiskLevel::high:
            return QStringLiteral("do not move");
        case RiskLevel::medium:
            return QStringLiteral("caution");
        case RiskLevel::low:
            break;
    }
    return {};
}

}  // namespace

std::vector<Role<AppRow>> AppRow::roles() {
    return {
        {"appId", [](const AppRow& row) -> QVariant { return screenText(row.entry.id); }},
        {"name", [](const AppRow& row) -> QVariant { return screenText(row.entry.name); }},
        {"bundlePath", [](const AppRow& row) { return QVariant::fromValue(FilePath(row.entry.bundlePath)); }},
        {"bundlePathText", [](const AppRow& row) -> QVariant { return screenPath(row.entry.bundlePath); }},
        {"version", [](const AppRow& row) -> QVariant { return screenText(row.entry.version.value_or("")); }},
        {"appSizeText", [](const AppRow& row) -> QVariant { return bundleSizeText(row, row.entry.appSize); }},
        {"dataSizeText", [](const AppRow& row) -> QVariant { return sizeText(row.entry.dataSize); }},
        {"totalSizeText", [](const AppRow& row) -> QVariant { return bundleSizeText(row, row.entry.totalSize()); }},
        {"hasData", [](const AppRow& row) -> QVariant { return !row.entry.dataPaths.empty(); }},
        {"riskText", [](const AppRow& row) -> QVariant { return riskText(row.entry.riskLevel()); }},
        {"isAbsent", [](const AppRow& row) -> QVariant { return row.isAbsent; }},
        {"isAlreadySymlinked", [](const AppRow& row) -> QVariant { return row.entry.isAlreadySymlinked; }},
        // Until an application is measured anew, it shows the sizes that it had.
        {"isSizeKnown", [](const AppRow& row) -> QVariant { return !row.sizesPending || row.entry.totalSize() > 0; }},
        {"iconSource", [](const AppRow& row) -> QVariant { return AppIcons::source(row.entry.bundlePath); }},
        {"sizesPending", [](const AppRow& row) -> QVariant { return row.sizesPending; }},
        {"isSelected", [](const AppRow& row) -> QVariant { return row.isSelected; }},
        {"isExpanded", [](const AppRow& row) -> QVariant { return row.isExpanded; }},
    };
}

}  // namespace tarvik
