#include "State/Uninstall/UninstallState.h"

#include "Discovery/InstalledAppsScanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Files/WrittenPath.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/DropURLReader.h"
#include "State/Shared/EngineObjects.h"
#include "State/Threads/Background.h"
#include "Uninstall/AppGrouper.h"
#include "Uninstall/AppUninstallPlanner.h"
#include "Uninstall/UninstallTarget.h"
#include "UninstallRun/UninstallHistory.h"

#include <QScopeGuard>

#include <cstddef>
#include <utility>

namespace tarvik {

namespace {

constexpr int mostWalksAtATime = 6;

using PastItems = std::vector<std::pair<std::string, std::vector<UninstallUndo::Item>>>;

/// What a user drops is looked for as it is stored.
std::optional<AppRecord> appAt(const Host& host, const fs::path& written) {
    if (!written.is_absolute()) return std::nullopt;
    return UninstallTarget::atPath(host, WrittenPath::meant(written));
}

}  // namespace

UninstallState::UninstallState(AppState& app)
    : TabState(app),
      m_list(app.host().now),
      m_planned(app.host().home),
      m_past(app.host().home),
      m_walks(mostWalksAtATime) {}

UninstallState::~UninstallState() = default;

UninstallState* UninstallState::create(QQmlEngine* engine, QJSEngine*) {
    return &EngineObjects::stateOf(*engine)->tab<UninstallState>();
}

void UninstallState::refreshUninstall() {
    m_isWanted = true;
    if (m_isScanning || app().isClosing()) return;
    setScanning(true);
    follow(readPast());
    m_stopSizing.cancel();
    follow(scanApps());
}

void UninstallState::refresh() {
    m_isScanDueAgain = m_isScanning;
    if (m_isWanted) refreshUninstall();
}

void UninstallState::stop() {
    m_stopSizing.cancel();
    m_stopPlanning.cancel();
}

QCoro::Task<> UninstallState::scanApps() {
    const auto end = qScopeGuard([this] {
        setScanning(false);
        if (std::exchange(m_isScanDueAgain, false)) refreshUninstall();
    });
    const auto discover = [host = host()] { return InstalledAppsScanner::discover(host); };
    std::vector<AppRecord> apps = co_await inBackground(Priority::userInitiated, discover);
    const auto group = [apps] { return AppGrouper::group(apps); };
    std::vector<UninstallGroup> groups = co_await inBackground(Priority::userInitiated, group);
    m_list.setApps(apps, std::move(groups));
    startUninstallSizing(std::move(apps));
}

QCoro::Task<> UninstallState::readPast() {
    const int look = ++m_looksAtPast;
    const auto note = [host = host()] { return UninstallHistory::knownMachine(host); };
    const Host known = co_await inBackground(Priority::userInitiated, note);
    const auto read = [known] { return UninstallHistory::list(known); };
    std::vector<AppUninstallSession> sessions = co_await inBackground(Priority::userInitiated, read);
    if (look != m_looksAtPast) co_return;
    m_past.setSessions(sessions);
    const auto lookAtItems = [known, sessions, stop = app().stopMeasuring()] {
        PastItems items;
        for (const AppUninstallSession& session : sessions) {
            if (stop.isCancelled()) break;
            items.emplace_back(session.id, UninstallUndo::look(known, session));
        }
        return items;
    };
    const PastItems items = co_await inBackground(Priority::userInitiated, lookAtItems);
    if (look == m_looksAtPast) m_past.setItems(items);
}

void UninstallState::selectUninstallApp(std::optional<AppRecord> record) {
    ++m_choices;
    m_stopPlanning.cancel();
    m_stopPlanning = {};
    m_planned.setApp(record);
    if (!record || app().isClosing()) return;
    m_log.replaceBy({screenText("inspect\t" + record->bundlePath.native())});
    follow(plan(std::move(*record), m_stopPlanning));
}

QCoro::Task<> UninstallState::plan(AppRecord record, Cancellation stop) {
    const auto look = [host = host(), record = std::move(record), selection = m_selection, stop] {
        return AppUninstallPlanner::plan(host, UninstallTarget::entryFor(host, record), selection,
                                         RelatedFileScanner::Sizes::measured, stop);
    };
    AppUninstallPlan plan = co_await inBackground(Priority::userInitiated, look);
    if (stop.isCancelled()) co_return;
    const auto items = std::to_string(plan.candidates.size());
    const auto bytes = std::to_string(plan.totalBytes);
    m_planned.setPlan(std::move(plan));
    appendUninstallLog({"plan\titems=" + items + "\tbytes=" + bytes});
}

void UninstallState::inspectDroppedBundle(const QUrl& url) {
    if (!app().isClosing()) follow(inspect(url));
}

QCoro::Task<> UninstallState::inspect(QUrl url) {
    const int choice = ++m_choices;
    const fs::path path = DropURLReader::pathOf(url).value_or(fs::path());
    const auto look = [host = host(), path] { return appAt(host, path); };
    std::optional<AppRecord> record = co_await inBackground(Priority::userInitiated, look);
    if (choice != m_choices) co_return;
    if (record) {
        selectUninstallApp(std::move(record));
    } else {
        const QString name = path.empty() ? url.fileName(QUrl::PrettyDecoded) : screenText(lastComponent(path));
        app().setError(QStringLiteral("Not an app bundle: ") + (name.isEmpty() ? url.toDisplayString() : name));
    }
}

void UninstallState::appendUninstallLog(const std::vector<std::string>& lines) {
    QStringList texts;
    for (const std::string& line : lines) texts.push_back(screenText(line));
    m_log.append(texts);
}

const UninstallListRow* UninstallState::rowAt(int row) const {
    const auto& rows = m_list.rows();
    return row >= 0 && static_cast<std::size_t>(row) < rows.size() ? &rows[static_cast<std::size_t>(row)] : nullptr;
}

void UninstallState::selectRow(int row) {
    const UninstallListRow* line = rowAt(row);
    if (line && line->app()) selectUninstallApp(*line->app());
}

void UninstallState::pressRow(int row) {
    const UninstallListRow* line = rowAt(row);
    if (line && line->app()) return selectRow(row);
    if (line) setRowOpen(row, !line->isOpen);
}

void UninstallState::setRowOpen(int row, bool isOpen) {
    const UninstallListRow* line = rowAt(row);
    if (!line || !line->canClose || line->isOpen == isOpen) return;
    if (line->group()) {
        m_list.toggleGroup(std::string(line->group()->key));
    } else {
        m_list.toggleWholeList();
    }
}

void UninstallState::toggleRowMark(int row) {
    const UninstallListRow* line = rowAt(row);
    if (line && line->app()) m_list.toggleMark(std::string(line->app()->id));
    if (line && line->group()) m_list.toggleGroupMark(std::string(line->group()->key));
}

void UninstallState::togglePlanRow(int row) {
    const auto& rows = m_planned.rows();
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size()) return;
    const UninstallPlanRow& line = rows[static_cast<std::size_t>(row)];
    if (line.kind == UninstallPlanRow::Kind::section) return toggleCategoryChecked(line.category);
    toggleChecked(std::string(line.path.native()));
}

void UninstallState::setPlanRowOpen(int row, bool isOpen) {
    const auto& rows = m_planned.rows();
    if (row < 0 || static_cast<std::size_t>(row) >= rows.size()) return;
    const UninstallPlanRow& line = rows[static_cast<std::size_t>(row)];
    if (line.kind == UninstallPlanRow::Kind::section && line.isOpen != isOpen) toggleSection(line.category);
}

void UninstallState::setScanning(bool isScanning) {
    if (m_isScanning == isScanning) return;
    m_isScanning = isScanning;
    emit isScanningUninstallChanged();
}

void UninstallState::setUninstalling(bool isUninstalling) {
    if (m_isUninstalling == isUninstalling) return;
    m_isUninstalling = isUninstalling;
    emit isUninstallingChanged();
}

}  // namespace tarvik
