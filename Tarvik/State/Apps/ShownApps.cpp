#include "State/Apps/ShownApps.h"

#include "Platform/Text/Text.h"
#include "State/Apps/AppsState.h"

#include <algorithm>

namespace tarvik {

namespace {

/// How long rows stand still while sizes come in.
constexpr int calmMilliseconds = 300;

bool isIn(ShownApps::Scope scope, const AppEntry& entry) {
    return scope == ShownApps::Scope::all || entry.isAlreadySymlinked == (scope == ShownApps::Scope::onDrive);
}

bool comesBefore(const AppEntry& left, const AppEntry& right, ShownApps::SortKey key) {
    switch (key) {
        case ShownApps::SortKey::size:
            return left.totalSize() > right.totalSize();
        case ShownApps::SortKey::name:
            return Text::localizedCompare(left.name, right.name) < 0;
        case ShownApps::SortKey::risk:
            return left.riskLevel() > right.riskLevel();
    }
    return false;
}

}  // namespace

ShownApps::ShownApps(QObject* parent) : QObject(parent) {
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &ShownApps::refresh);
}

void ShownApps::setState(AppsState* state) {
    if (m_state == state) return;
    if (m_state) {
        m_state->disconnect(this);
        m_state->appsModel()->disconnect(this);
    }
    m_state = state;
    if (state) {
        const QAbstractItemModel* apps = state->appsModel();
        connect(apps, &QAbstractItemModel::dataChanged, this, &ShownApps::refreshSoon);
        connect(apps, &QAbstractItemModel::rowsInserted, this, &ShownApps::refreshSoon);
        connect(apps, &QAbstractItemModel::rowsRemoved, this, &ShownApps::refreshSoon);
        connect(apps, &QAbstractItemModel::rowsMoved, this, &ShownApps::refreshSoon);
        connect(state, &AppsState::isScanningAppsChanged, this, &ShownApps::refresh);
        // What the user does is seen at once.
        connect(state, &AppsState::selectionChanged, this, &ShownApps::refresh);
    }
    refresh();
    emit stateChanged();
}

template <typename Value>
void ShownApps::choose(Value& known, const Value& chosen) {
    if (known == chosen) return;
    known = chosen;
    refresh();
    emit choiceChanged();
}

void ShownApps::setSearch(const QString& search) {
    choose(m_search, search);
}

void ShownApps::setSortBy(SortKey key) {
    choose(m_sortBy, key);
}

void ShownApps::setScope(Scope scope) {
    choose(m_scope, scope);
}

void ShownApps::setHideRisky(bool hides) {
    choose(m_hideRisky, hides);
}

void ShownApps::refreshSoon() {
    if (!m_soon.isActive()) m_soon.start(m_state && m_state->sizeProgress() > 0 ? calmMilliseconds : 0);
}

void ShownApps::refresh() {
    m_soon.stop();
    static const std::vector<AppRow> none;
    const auto& all = m_state ? m_state->apps() : none;
    m_onDriveCount = static_cast<int>(
        std::count_if(all.begin(), all.end(), [](const AppRow& row) { return row.entry.isAlreadySymlinked; }));
    m_rows.replaceAll(filtered(all, m_scope, m_search, m_hideRisky, m_sortBy));
    emit changed();
}

int ShownApps::totalCount() const {
    return m_state ? static_cast<int>(m_state->apps().size()) : 0;
}

bool ShownApps::areAllSelected() const {
    return !rows().empty() &&
           std::all_of(rows().begin(), rows().end(), [](const AppRow& row) { return row.isSelected; });
}

void ShownApps::toggleAll() {
    if (!m_state) return;
    std::vector<fs::path> bundles;
    for (const AppRow& row : rows()) bundles.push_back(row.entry.bundlePath);
    m_state->setAppsSelected(bundles, !areAllSelected());
}

std::vector<AppRow> ShownApps::filtered(const std::vector<AppRow>& rows, Scope scope, const QString& search,
                                        bool hideRisky, SortKey key) {
    const std::string wanted = search.toStdString();
    std::vector<AppRow> shown;
    for (const AppRow& row : rows) {
        if (!isIn(scope, row.entry)) continue;
        if (hideRisky && row.entry.riskLevel() != RiskLevel::low) continue;
        if (wanted.empty() || Text::localizedContains(row.entry.name, wanted)) shown.push_back(row);
    }
    std::stable_sort(shown.begin(), shown.end(), [key](const AppRow& left, const AppRow& right) {
        return comesBefore(left.entry, right.entry, key);
    });
    return shown;
}

}  // namespace tarvik
