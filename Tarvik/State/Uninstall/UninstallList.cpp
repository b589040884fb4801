#include "State/Uninstall/UninstallList.h"

#include "State/Lists/ScreenText.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarvik {

namespace {

/// How long rows stand still while sizes come in.
constexpr int calmListMilliseconds = 300;

void flip(std::set<std::string>& ids, const std::string& id) {
    if (ids.erase(id) == 0) ids.insert(id);
}

bool isSameButForItsSizes(const AppRecord& known, const AppRecord& found) {
    return known.version == found.version && known.modifiedAt == found.modifiedAt && known.kind == found.kind;
}

}  // namespace

UninstallList::UninstallList(Clock now, QObject* parent) : QObject(parent), m_now(std::move(now)) {
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &UninstallList::refresh);
}

void UninstallList::setSearch(const QString& search) {
    if (m_search == search) return;
    m_search = search;
    m_choice.search = search.toStdString();
    refresh();
    emit choiceChanged();
}

void UninstallList::setSort(UninstallSort sort) {
    if (m_choice.sort == sort) return;
    m_choice.sort = sort;
    refresh();
    emit choiceChanged();
}

void UninstallList::setFilter(UninstallFilter filter) {
    if (m_choice.filter == filter) return;
    m_choice.filter = filter;
    refresh();
    emit choiceChanged();
}

void UninstallList::setSortIndex(int index) {
    const auto& all = allUninstallSorts();
    if (index >= 0 && static_cast<std::size_t>(index) < all.size()) setSort(all[static_cast<std::size_t>(index)]);
}

void UninstallList::setFilterIndex(int index) {
    const auto& all = allUninstallFilters();
    if (index >= 0 && static_cast<std::size_t>(index) < all.size()) setFilter(all[static_cast<std::size_t>(index)]);
}

QStringList UninstallList::sortLabels() {
    QStringList labels;
    for (const UninstallSort sort : allUninstallSorts()) labels.push_back(screenText(labelOf(sort)));
    return labels;
}

QStringList UninstallList::filterLabels() {
    QStringList labels;
    for (const UninstallFilter filter : allUninstallFilters()) labels.push_back(screenText(labelOf(filter)));
    return labels;
}

QString UninstallList::sortShortLabel() const {
    return screenText(shortLabelOf(sort()));
}

void UninstallList::setApps(std::vector<AppRecord> apps, std::vector<UninstallGroup> groups) {
    std::unordered_map<std::string, const AppRecord*> known;
    for (const AppRecord& record : m_apps) known.emplace(record.id, &record);
    const auto keepSizes = [&](AppRecord& record) {
        const auto before = known.find(record.id);
        if (before == known.end() || !isSameButForItsSizes(*before->second, record)) return;
        record.bundleSizeBytes = before->second->bundleSizeBytes;
        record.footprintBytes = before->second->footprintBytes;
    };
    std::for_each(apps.begin(), apps.end(), keepSizes);
    for (UninstallGroup& group : groups) std::for_each(group.apps.begin(), group.apps.end(), keepSizes);
    std::set<std::string> marked;
    for (const AppRecord& record : apps)
        if (m_choice.markedIds.contains(record.id)) marked.insert(record.id);
    m_choice.markedIds = std::move(marked);
    m_apps = std::move(apps);
    m_groups = std::move(groups);
    refresh();
}

bool UninstallList::takeSizes(const std::unordered_map<std::string, AppRecord>& measured) {
    const auto take = [&](AppRecord& record) {
        const auto found = measured.find(record.id);
        if (found == measured.end()) return false;
        record = found->second;
        return true;
    };
    bool hasAny = false;
    for (AppRecord& record : m_apps) hasAny = take(record) || hasAny;
    if (!hasAny) return false;
    for (UninstallGroup& group : m_groups) std::for_each(group.apps.begin(), group.apps.end(), take);
    if (!isSizeSort(sort())) {
        updateRows(measured);
    } else if (!m_soon.isActive()) {
        m_soon.start(calmListMilliseconds);
    }
    return true;
}

void UninstallList::updateRows(const std::unordered_map<std::string, AppRecord>& measured) {
    for (std::size_t index = 0; index < rows().size(); ++index) {
        const AppRecord* record = rows()[index].app();
        if (!record) continue;
        const auto found = measured.find(record->id);
        if (found == measured.end()) continue;
        UninstallListRow row = rows()[index];
        row.content = found->second;
        m_rows.update(index, std::move(row));
    }
}

void UninstallList::refresh() {
    m_soon.stop();
    m_totalCount = static_cast<int>(std::count_if(m_apps.begin(), m_apps.end(), [](const AppRecord& record) {
        return record.kind != AppRecordKind::systemRisky;
    }));
    const auto shown = UninstallListRow::shown(m_apps, m_choice, m_now());
    m_shownCount = static_cast<int>(shown.size());
    m_rows.replaceAll(UninstallListRow::list(shown, m_groups, m_choice));
    emit changed();
}

void UninstallList::toggleMark(const std::string& id) {
    flip(m_choice.markedIds, id);
    refresh();
}

void UninstallList::toggleGroup(const std::string& key) {
    flip(m_choice.openGroups, key);
    refresh();
}

void UninstallList::toggleGroupMark(const std::string& key) {
    for (const UninstallListRow& row : rows()) {
        if (!row.group() || row.group()->key != key) continue;
        const bool areAllMarked = row.marked == UninstallListRow::Marked::all;
        for (const AppRecord& record : row.group()->apps) {
            if (areAllMarked) {
                m_choice.markedIds.erase(record.id);
            } else {
                m_choice.markedIds.insert(record.id);
            }
        }
        break;
    }
    refresh();
}

void UninstallList::toggleWholeList() {
    m_choice.isListOpen = !m_choice.isListOpen;
    refresh();
}

}  // namespace tarvik
