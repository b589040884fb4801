#include "State/Apps/DataRow.h"

#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

namespace tarvik {

namespace {

QString nameOf(DataRow::Kind kind) {
    switch (kind) {
        case DataRow::Kind::category:
            return QStringLiteral("category");
        case DataRow::Kind::more:
            return QStringLiteral("more");
        case DataRow::Kind::file:
            break;
    }
    return QStringLiteral("file");
}

int checkState(CheckedPaths::State state) {
    switch (state) {
        case CheckedPaths::State::all:
            return Qt::Checked;
        case CheckedPaths::State::some:
            return Qt::PartiallyChecked;
        case CheckedPaths::State::none:
            break;
    }
    return Qt::Unchecked;
}

}  // namespace

std::vector<Role<DataRow>> DataRow::roles() {
    return {
        {"kind", [](const DataRow& row) -> QVariant { return nameOf(row.kind); }},
        {"name", [](const DataRow& row) -> QVariant { return screenText(row.name); }},
        {"path", [](const DataRow& row) { return QVariant::fromValue(FilePath(row.path)); }},
        {"pathText", [](const DataRow& row) -> QVariant { return screenPath(row.path); }},
        {"helpText", [](const DataRow& row) -> QVariant { return screenText(row.help); }},
        {"summary", [](const DataRow& row) -> QVariant { return screenText(row.summary); }},
        {"sizeText",
         [](const DataRow& row) -> QVariant {
             return row.bytes ? screenText(SizeCalculator::format(*row.bytes)) : QString();
         }},
        {"depth", [](const DataRow& row) -> QVariant { return row.depth; }},
        {"isDirectory", [](const DataRow& row) -> QVariant { return row.isDirectory; }},
        {"isLink", [](const DataRow& row) -> QVariant { return row.isLink; }},
        {"isOpen", [](const DataRow& row) -> QVariant { return row.isOpen; }},
        {"isLoading", [](const DataRow& row) -> QVariant { return row.isLoading; }},
        {"isLocked", [](const DataRow& row) -> QVariant { return row.isLocked; }},
        {"checkState", [](const DataRow& row) -> QVariant { return checkState(row.checked); }},
    };
}

}  // namespace tarvik
