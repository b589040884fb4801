#include "State/Uninstall/UninstallListRow.h"

#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"
#include "State/Lists/AppIcons.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <utility>

namespace tarvik {

namespace {

using Row = UninstallListRow;

bool isFound(const AppRecord& record, const std::string& folded) {
    if (folded.empty()) return true;
    const auto holds = [&](const std::string& text) {
        return Text::lowerCased(text).find(folded) != std::string::npos;
    };
    return holds(record.displayName) || (record.bundleIdentifier && holds(*record.bundleIdentifier));
}

Row::Marked markedOf(const UninstallGroup& group, const std::set<std::string>& markedIds) {
    const auto marked = std::count_if(group.apps.begin(), group.apps.end(),
                                      [&](const AppRecord& record) { return markedIds.contains(record.id); });
    if (marked == 0) return Row::Marked::none;
    return marked == static_cast<std::ptrdiff_t>(group.apps.size()) ? Row::Marked::all : Row::Marked::some;
}

Row appRow(AppRecord record, const Row::Choice& choice, bool isMember) {
    const auto marked = choice.markedIds.contains(record.id) ? Row::Marked::all : Row::Marked::none;
    return {.content = std::move(record), .marked = marked, .isMember = isMember};
}

QString kindBadge(AppRecordKind kind) {
    switch (kind) {
        case AppRecordKind::userApplications:
            return QStringLiteral("~/Apps");
        case AppRecordKind::symlink:
            return QStringLiteral("symlink");
        case AppRecordKind::systemRisky:
            return QStringLiteral("system");
        case AppRecordKind::externalTarget:
            return QStringLiteral("external");
        case AppRecordKind::tarvikLauncher:
            return QStringLiteral("launcher");
        case AppRecordKind::normal:
        case AppRecordKind::macAppStore:
            break;
    }
    return {};
}

QString dateText(const AppRecord& record) {
    if (!record.modifiedAt) return {};
    const auto since = std::chrono::floor<std::chrono::milliseconds>(record.modifiedAt->time_since_epoch());
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(since.count()).date(), QStringLiteral("MMMM d, yyyy"));
}

/// What a role gives for the lines that are applications, and nothing for others.
template <typename Value>
QVariant ofApp(const Row& row, const Value& value) {
    const AppRecord* record = row.app();
    return record ? QVariant::fromValue(value(*record)) : QVariant::fromValue(decltype(value(*record))());
}

QString nameOf(const Row& row) {
    if (const AppRecord* record = row.app()) return screenText(record->displayName);
    return screenText(row.group() ? row.group()->label : *row.header());
}

QString permissionsText(const AppRecord& record) {
    const int count = record.permissionCount();
    return count == 0 ? QString() : screenText(Text::counted(count, "Permission"));
}

QString sizeText(const AppRecord& record) {
    const auto bytes = record.displaySizeBytes();
    return bytes > 0 ? screenText(SizeCalculator::format(bytes)) : QString();
}

QString kindOf(const Row& row) {
    if (row.header()) return QStringLiteral("header");
    return row.group() ? QStringLiteral("group") : QStringLiteral("app");
}

}  // namespace

std::vector<AppRecord> UninstallListRow::shown(const std::vector<AppRecord>& apps, const Choice& choice,
                                               std::chrono::system_clock::time_point now) {
    const std::string folded = Text::lowerCased(choice.search);
    std::vector<AppRecord> left;
    for (const AppRecord& record : apps)
        if (record.kind != AppRecordKind::systemRisky && isFound(record, folded) &&
            keeps(choice.filter, record, choice.markedIds, now))
            left.push_back(record);
    return sorted(std::move(left), choice.sort);
}

std::vector<UninstallListRow> UninstallListRow::list(const std::vector<AppRecord>& shown,
                                                     const std::vector<UninstallGroup>& groups, const Choice& choice) {
    std::unordered_map<std::string, const UninstallGroup*> groupOf;
    for (const UninstallGroup& group : groups)
        for (const AppRecord& record : group.apps) groupOf.emplace(record.id, &group);

    std::unordered_map<const UninstallGroup*, std::vector<AppRecord>> members;
    for (const AppRecord& record : shown)
        if (const auto found = groupOf.find(record.id); found != groupOf.end())
            members[found->second].push_back(record);

    std::vector<UninstallListRow> rows;
    const bool bySize = isSizeSort(choice.sort);
    if (!bySize && !shown.empty())
        rows.push_back({.content = listHeaderOf(choice.sort), .canClose = true, .isOpen = choice.isListOpen});
    if (!bySize && !choice.isListOpen) return rows;

    std::string range;
    for (const AppRecord& record : shown) {
        const auto found = groupOf.find(record.id);
        const auto inGroup = found == groupOf.end() ? members.end() : members.find(found->second);
        if (found != groupOf.end() && inGroup == members.end()) continue;  // The group stands further up.
        if (bySize) {
            std::string itsRange = sizeRange(record.displaySizeBytes());
            if (itsRange != range) rows.push_back({.content = itsRange});
            range = std::move(itsRange);
        }
        if (inGroup == members.end()) {
            rows.push_back(appRow(record, choice, false));
            continue;
        }
        UninstallGroup group{found->second->key, found->second->label, found->second->developer,
                             std::move(inGroup->second)};
        members.erase(inGroup);
        const bool isOpen = choice.openGroups.contains(group.key);
        const auto marked = markedOf(group, choice.markedIds);
        rows.push_back({.content = group, .marked = marked, .canClose = true, .isOpen = isOpen});
        if (!isOpen) continue;
        for (AppRecord& member : group.apps) rows.push_back(appRow(std::move(member), choice, true));
    }
    return rows;
}

std::string UninstallListRow::sizeRange(std::int64_t bytes) {
    constexpr std::int64_t mebibyte = std::int64_t{1} << 20;
    if (bytes >= 1024 * mebibyte) return "More than 1 GB";
    if (bytes >= 100 * mebibyte) return "100 MB – 1 GB";
    if (bytes >= 5 * mebibyte) return "5 MB – 100 MB";
    return "Less than 5 MB";
}

std::vector<Role<UninstallListRow>> UninstallListRow::roles() {
    return {
        {"kind", [](const Row& row) -> QVariant { return kindOf(row); }},
        {"name", [](const Row& row) -> QVariant { return nameOf(row); }},
        {"rowId", [](const Row& row) -> QVariant { return uniqueText(key(row)); }},
        {"bundlePath",
         [](const Row& row) {
             return ofApp(row, [](const AppRecord& record) { return FilePath(record.bundlePath); });
         }},
        {"iconSource",
         [](const Row& row) {
             return ofApp(row, [](const AppRecord& record) { return AppIcons::source(record.bundlePath); });
         }},
        {"badge",
         [](const Row& row) { return ofApp(row, [](const AppRecord& record) { return kindBadge(record.kind); }); }},
        {"sizeText", [](const Row& row) { return ofApp(row, sizeText); }},
        {"permissionsText", [](const Row& row) { return ofApp(row, permissionsText); }},
        {"dateText", [](const Row& row) { return ofApp(row, dateText); }},
        {"countText",
         [](const Row& row) -> QVariant {
             const UninstallGroup* group = row.group();
             return group ? screenText(Text::counted(static_cast<std::int64_t>(group->totalApps()), "Application"))
                          : QString();
         }},
        {"checkState",
         [](const Row& row) -> QVariant {
             if (row.marked == Marked::none) return static_cast<int>(Qt::Unchecked);
             return static_cast<int>(row.marked == Marked::all ? Qt::Checked : Qt::PartiallyChecked);
         }},
        {"canClose", [](const Row& row) -> QVariant { return row.canClose; }},
        {"isOpen", [](const Row& row) -> QVariant { return row.isOpen; }},
        {"isMember", [](const Row& row) -> QVariant { return row.isMember; }},
    };
}

std::string UninstallListRow::key(const UninstallListRow& row) {
    if (const AppRecord* record = row.app()) return "app:" + record->id;
    if (const UninstallGroup* group = row.group()) return "group:" + group->key;
    return "header:" + *row.header();
}

}  // namespace tarvik
