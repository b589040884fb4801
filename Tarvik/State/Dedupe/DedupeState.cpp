#include "State/Dedupe/DedupeState.h"

#include "Dedupe/AppDedupeService.h"
#include "Dedupe/DedupeTexts.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/EngineObjects.h"
#include "State/Threads/Background.h"

#include <QScopeGuard>

#include <utility>

namespace tarvik {

DedupeState::DedupeState(AppState& app) : TabState(app) {}

DedupeState* DedupeState::create(QQmlEngine* engine, QJSEngine*) {
    return &EngineObjects::stateOf(*engine)->tab<DedupeState>();
}

int DedupeState::removableCount() const {
    return m_plan ? static_cast<int>(m_plan->removableItems().size()) : 0;
}

QString DedupeState::removableSize() const {
    return screenText(SizeCalculator::format(m_plan ? m_plan->removableBytes() : 0));
}

QString DedupeState::purpose() const {
    return screenText(DedupeTexts::purpose);
}

QString DedupeState::nothingFound() const {
    return screenText(DedupeTexts::nothingFound);
}

void DedupeState::refreshDedupe() {
    if (!m_isRunning) setFailures({});
    beginScan();
}

void DedupeState::refresh() {
    m_isScanOutdated = m_isScanning;
    beginScan();
}

void DedupeState::beginScan() {
    if (m_isScanning || app().isClosing()) return;
    setScanning(true);
    follow(scan());
}

QCoro::Task<> DedupeState::scan() {
    const auto end = qScopeGuard([this] { setScanning(false); });
    const auto look = [host = host(), cancellation = m_stopScanning] {
        return AppDedupeService::plan(host, AppDedupeService::applicationRoots(host), cancellation);
    };
    do {
        m_isScanOutdated = false;
        auto plan = co_await inBackground(Priority::utility, look);
        if (m_stopScanning.isCancelled()) co_return;
        if (!m_isScanOutdated) take(std::move(plan));
    } while (m_isScanOutdated);
}

void DedupeState::runDedupe() {
    if (m_isRunning || app().isClosing()) return;
    if (removableCount() == 0) return app().setError(screenText(DedupeTexts::nothingToRemove));
    follow(removeDuplicates(*m_plan));
}

QCoro::Task<> DedupeState::removeDuplicates(AppDedupePlan plan) {
    const auto held = app().act({"Quit while duplicate launchers are being removed?",
                                 "They will be removed before the window closes.",
                                 {"Finish and Quit", "Cancel"}});
    setRunning(true);
    const auto end = qScopeGuard([this] {
        setRunning(false);
        app().lookAgain();
    });
    setFailures({});
    const auto run = [host = host(), plan = std::move(plan)] { return AppDedupeService::run(host, plan, false); };
    const AppDedupeRunResult result = co_await inBackground(Priority::userInitiated, run);
    QStringList failures;
    for (const auto& item : result.movedItems)
        if (item.error) failures.push_back(screenText(*item.error));
    setFailures(std::move(failures));
    const auto outcome = DedupeTexts::outcomeOf(result);
    if (outcome.hasFailed)
        app().setError(screenText(outcome.sentence));
    else
        app().setInfo(screenText(outcome.sentence));
}

void DedupeState::take(AppDedupePlan plan) {
    m_groups.replaceAll(plan.groups);
    m_plan = std::move(plan);
    emit dedupePlanChanged();
}

void DedupeState::setScanning(bool isScanning) {
    m_isScanning = isScanning;
    emit isScanningDedupeChanged();
}

void DedupeState::setRunning(bool isRunning) {
    m_isRunning = isRunning;
    emit isRunningDedupeChanged();
}

void DedupeState::setFailures(QStringList failures) {
    if (m_failures == failures) return;
    m_failures = std::move(failures);
    emit failuresChanged();
}

}  // namespace tarvik
