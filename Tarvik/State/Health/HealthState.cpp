#include "State/Health/HealthState.h"

#include "Health/HealthCheck.h"
#include "HealthRepair/HealthRepair.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/EngineObjects.h"
#include "State/Threads/Background.h"

#include <QDateTime>
#include <QLocale>
#include <QScopeGuard>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace tarvik {

namespace {

constexpr std::size_t mostLargest = 10;

/// The problems in the order of the sections; in each, in that of the report.
std::vector<HealthIssue> bySection(const HealthReport& report) {
    auto groups = report.grouped();
    std::vector<HealthIssue> issues;
    for (const HealthIssue::Kind kind : HealthIssueKind::sections())
        for (HealthIssue& issue : groups[kind]) issues.push_back(std::move(issue));
    return issues;
}

}  // namespace

HealthState::HealthState(AppState& app) : TabState(app) {}

HealthState* HealthState::create(QQmlEngine* engine, QJSEngine*) {
    return &EngineObjects::stateOf(*engine)->tab<HealthState>();
}

int HealthState::healthyCount() const {
    return m_report ? static_cast<int>(m_report->healthyCount) : 0;
}

int HealthState::problemCount() const {
    return m_report ? static_cast<int>(m_report->problems().size()) : 0;
}

int HealthState::scannedSymlinks() const {
    return m_report ? static_cast<int>(m_report->scannedSymlinks) : 0;
}

int HealthState::scannedDrives() const {
    return m_report ? static_cast<int>(m_report->scannedDrives.size()) : 0;
}

QString HealthState::lastScan() const {
    if (!m_report) return {};
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(m_report->scannedAt.time_since_epoch());
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(since.count());
    return QStringLiteral("Last scan: ") + QLocale().toString(time.time(), QLocale::ShortFormat);
}

QVariantMap HealthState::section(const QString& kind) const {
    qsizetype count = 0;
    std::int64_t bytes = 0;
    HealthIssue::Kind found = HealthIssue::Kind::healthy;
    for (const HealthIssue& issue : m_problems.records()) {
        if (screenText(HealthIssueKind::rawValue(issue.kind)) != kind) continue;
        found = issue.kind;
        ++count;
        bytes += issue.sizeBytes;
    }
    const QString total = found == HealthIssue::Kind::reverted
                              ? QStringLiteral("Total reclaimable: ") + screenText(SizeCalculator::format(bytes))
                              : QString();
    return {
        {QStringLiteral("title"), QStringLiteral("%1 (%2)").arg(screenText(HealthIssueKind::title(found))).arg(count)},
        {QStringLiteral("icon"), HealthIssueRow::iconOf(found)},
        {QStringLiteral("tone"), HealthIssueRow::toneOf(found)},
        {QStringLiteral("total"), total}};
}

void HealthState::refreshHealth() {
    if (m_isScanning || app().isClosing()) return;
    m_isScanning = true;
    emit isScanningHealthChanged();
    follow(check());
}

QCoro::Task<> HealthState::check() {
    const auto end = qScopeGuard([this] {
        m_isScanning = false;
        emit isScanningHealthChanged();
        forgetEndedRepairs();
    });
    const auto look = [host = host(), cancellation = m_stopChecking] {
        return HealthCheck::run(host, HealthCheck::applicationRoots(host), {.cancellation = cancellation});
    };
    auto report = co_await inBackground(Priority::utility, look);
    if (!m_stopChecking.isCancelled()) take(std::move(report));
}

void HealthState::take(HealthReport report) {
    m_problems.replaceAll(bySection(report));
    m_largest.replaceAll(report.largestHealthy(mostLargest));
    m_report = std::move(report);
    emit healthReportChanged();
}

void HealthState::forgetEndedRepairs() {
    for (const QString& id : std::exchange(m_endedRepairs, {})) m_repairing.removeOne(id);
    emit repairingChanged();
}

void HealthState::repairHealth(const QString& id, int strategy) {
    if (m_repairing.contains(id)) return;
    const auto& all = m_problems.records();
    const auto issue = std::find_if(
        all.begin(), all.end(), [&](const HealthIssue& each) { return uniqueText(HealthIssueRow::key(each)) == id; });
    if (issue == all.end()) return;
    for (const auto& offer : HealthRepairStrategies::offers(issue->kind))
        if (static_cast<int>(offer.strategy) == strategy) return repairHealth(*issue, offer.strategy);
}

void HealthState::repairHealth(const HealthIssue& issue, HealthRepairStrategy strategy) {
    if (!app().isClosing()) follow(repair(issue, strategy));
}

QCoro::Task<> HealthState::repair(HealthIssue issue, HealthRepairStrategy strategy) {
    const QString id = uniqueText(HealthIssueRow::key(issue));
    m_repairing.push_back(id);
    emit repairingChanged();
    const auto again = qScopeGuard([this, id] {
        m_endedRepairs.push_back(id);
        refreshHealth();
        app().lookAgain();
    });
    const auto held = app().actBeside({"Quit while something is being repaired?",
                                       "It will be repaired before the window closes.",
                                       {"Finish and Quit", "Cancel"}});
    const auto act = [host = host(), issue, strategy] { return HealthRepair::perform(host, issue, strategy); };
    try {
        app().setInfo(screenText(co_await inBackground(Priority::userInitiated, act)));
    } catch (const Failure& failure) {
        // It moves an application, as a move does.
        if (strategy == HealthRepairStrategy::reSymlinkReverted)
            app().keptApplications()->add({{issue.location, failure.description()}});
        throw;
    }
}

}  // namespace tarvik
