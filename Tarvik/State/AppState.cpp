#include "State/AppState.h"

#include "Move/DriveChoice.h"
#include "Platform/AppStorageNames.h"
#include "Platform/DriveScanner.h"
#include "Platform/Files.h"
#include "Platform/SizeCalculator.h"
#include "Platform/Text.h"
#include "Platform/VolumeList.h"
#include "State/Background.h"
#include "State/Dialogs.h"
#include "State/QmlModule.h"
#include "State/ScreenText.h"

#include <QScopeGuard>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// What a look at the drives brings home.
struct DriveScan {
    std::vector<DriveInfo> drives;
    std::optional<std::int64_t> bootFree;
};

DriveScan scan(const Host& host) {
    DriveScan found{DriveScanner::scan(host), std::nullopt};
    const auto boot =
        std::find_if(found.drives.begin(), found.drives.end(), [](const auto& drive) { return drive.isBoot(); });
    // Where no volume is the boot volume, the one with the user's home is what runs full.
    found.bootFree = boot != found.drives.end() ? boot->freeBytes : host.volumes->availableBytes(host.home);
    return found;
}

}  // namespace

AppState::AppState(Host host, Dialogs& dialogs, QObject* parent)
    : QObject(parent),
      appsTargetFolderName(AppStorageNames::appsRootOn({})),
      dataTargetFolderName(AppStorageNames::dataRootOn({})),
      foldersTargetFolderName(AppStorageNames::foldersRootOn({})),
      m_host(std::move(host)),
      m_dialogs(dialogs),
      m_flows([this](const std::exception& failure) { setError(screenText(failure.what())); }) {
    connect(this, &AppState::selectionChanged, this, &AppState::selectedTotalChanged);
}

AppState::~AppState() {
    m_isClosing = true;
    m_stopAfterItem.cancel();
    m_stopMeasuring.cancel();
    m_stopSizingApps.cancel();
    m_stopSizingSymlinks.cancel();
    m_stopSizingQuickPicks.cancel();
    m_dialogs.dismissAll();
    // Every member is still whole here, so that the flows end as they would have ended in the event loop.
    m_flows.waitForAll();
}

AppState* AppState::create(QQmlEngine* engine, QJSEngine*) {
    return QmlModule::stateOf(*engine);
}

QString AppState::selectedDriveId() const {
    return m_selectedDrive ? uniqueText(m_selectedDrive->id) : QString();
}

QString AppState::selectedDriveName() const {
    return m_selectedDrive ? screenText(m_selectedDrive->name) : QString();
}

QString AppState::selectedDriveFree() const {
    return m_selectedDrive ? screenText(Text::byteCount(m_selectedDrive->freeBytes)) : QString();
}

void AppState::refreshAll() {
    if (m_isScanningApps || m_isClosing) return;
    refreshDrives();
    refreshApps();
    refreshSymlinks();
    m_flows.add(findQuickPicks());
    m_flows.add(checkLinks());
}

void AppState::refreshDrives() {
    m_isDriveScanWanted = true;
    if (m_isScanningDrives) return;
    m_isScanningDrives = true;
    emit isScanningDrivesChanged();
    m_flows.add(scanDrives());
}

QCoro::Task<> AppState::scanDrives() {
    const auto end = qScopeGuard([this] {
        m_isScanningDrives = false;
        emit isScanningDrivesChanged();
    });
    // One scan at a time, and another one when somebody asked meanwhile: an answer is never older than the question.
    const auto look = [host = m_host] { return scan(host); };
    while (std::exchange(m_isDriveScanWanted, false)) {
        const DriveScan found = co_await inBackground(Priority::userInitiated, look);
        takeDrives(found.drives);
        m_bootFree = found.bootFree ? screenText(Text::byteCount(*found.bootFree)) : QString();
        emit bootFreeChanged();
    }
}

void AppState::takeDrives(std::vector<DriveInfo> drives) {
    std::vector<DriveInfo> targets;
    std::copy_if(drives.begin(), drives.end(), std::back_inserter(targets), DriveChoice::canBeTarget);
    m_drives.replaceAll(std::move(drives));
    m_targetDrives.replaceAll(std::move(targets));
    emit targetDrivesChanged();

    const auto& all = m_drives.records();
    const auto wanted = std::find_if(all.begin(), all.end(), [this](const DriveInfo& drive) {
        return m_selectedDrive ? drive.id == m_selectedDrive->id : !drive.isInternal && drive.isWritable;
    });
    // A selected drive that is gone stays selected: what is moved to it then fails and says why, instead of going
    // elsewhere.
    if (wanted != all.end()) setSelectedDrive(*wanted);
}

QCoro::Task<> AppState::findQuickPicks() {
    // What is being measured now would be old when it is there.
    m_stopSizingQuickPicks.cancel();
    const Cancellation cancellation = m_stopSizingQuickPicks = {};
    const auto look = [host = m_host] { return QuickPick::suggestions(host); };
    auto picks = co_await inBackground(Priority::utility, look);
    if (cancellation.isCancelled()) co_return;
    for (QuickPick& pick : picks)
        for (const QuickPick& known : quickPicks())
            if (known.path == pick.path) pick.bytes = known.bytes;
    m_quickPicks.replaceAll(picks);

    for (std::size_t index = 0; index < picks.size(); ++index) {
        const auto measure = [host = m_host, path = picks[index].path, cancellation] {
            return SizeCalculator::size(host, Files::resolved(path).value_or(path), cancellation);
        };
        picks[index].bytes = co_await inBackground(Priority::utility, measure);
        if (cancellation.isCancelled()) co_return;
        m_quickPicks.update(index, picks[index]);
    }
}

QCoro::Task<> AppState::checkLinks() {
    const auto asked = jobs();
    const int round = ++m_linkChanges;
    const auto look = [asked] {
        std::vector<bool> standing;
        for (const JobRow& row : asked) standing.push_back(Files::isSymbolicLink(row.job.source));
        return standing;
    };
    const std::vector<bool> standing = co_await inBackground(Priority::utility, look);
    if (round != m_linkChanges) co_return;  // What was seen may be untrue by now.
    for (std::size_t i = 0; i < asked.size(); ++i) {
        JobRow row = jobs()[i];
        row.isLinked = standing[i];
        m_jobs.update(i, std::move(row));
    }
}

void AppState::selectDrive(const QString& driveId) {
    const auto& all = m_drives.records();
    const auto picked =
        std::find_if(all.begin(), all.end(), [&](const DriveInfo& drive) { return uniqueText(drive.id) == driveId; });
    if (picked != all.end()) setSelectedDrive(*picked);
}

void AppState::clearError() {
    setError({});
}

void AppState::clearInfo() {
    setInfo({});
}

bool AppState::mayClose() {
    if (!m_isRunning && !m_isRestoring) return true;
    if (!m_isAskingToClose && !m_isClosing) m_flows.add(askToClose());
    return false;
}

QCoro::Task<> AppState::askToClose() {
    m_isAskingToClose = true;
    const Dialog question{
        "Quit while an item is being moved?",
        "Tarvik quits as soon as this item is safely done. Items that have not been started stay where they "
        "are.",
        {"Finish Item and Quit", "Cancel"}};
    const int answer = co_await m_dialogs.ask(question);
    m_isAskingToClose = false;
    if (answer != 0) co_return;
    m_isClosing = true;
    m_stopAfterItem.cancel();
    closeWhenReady();
}

void AppState::closeWhenReady() {
    if (m_isClosing && !m_isRunning && !m_isRestoring) emit readyToClose();
}

void AppState::setSelectedDrive(std::optional<DriveInfo> drive) {
    if (m_selectedDrive == drive) return;
    m_selectedDrive = std::move(drive);
    emit selectedDriveChanged();
}

void AppState::setPreparing(bool isPreparing) {
    m_isPreparing = isPreparing;
    emit isBusyChanged();
}

void AppState::setRunning(bool isRunning) {
    m_isRunning = isRunning;
    emit isBusyChanged();
    emit isRunningChanged();
    emit jobsProgressChanged();
}

void AppState::setRestoring(bool isRestoring) {
    m_isRestoring = isRestoring;
    emit isBusyChanged();
    emit isRestoringChanged();
    emit restoreChanged();
}

void AppState::setError(const QString& text) {
    if (m_lastError == text) return;
    m_lastError = text;
    emit lastErrorChanged();
}

void AppState::setInfo(const QString& text) {
    if (m_lastInfo == text) return;
    m_lastInfo = text;
    emit lastInfoChanged();
}

}  // namespace tarvik
