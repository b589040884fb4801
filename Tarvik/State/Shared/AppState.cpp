#include "State/Shared/AppState.h"

#include "MovePlan/DriveChoice.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/FullDiskAccess.h"
#include "Platform/Machine/VolumeList.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Text/Text.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/Dialogs.h"
#include "State/Shared/EngineObjects.h"
#include "State/Shared/Refusal.h"
#include "State/Shared/Tabs.h"
#include "State/Threads/Background.h"

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
      m_underWay([this] {
          emit isBusyChanged();
          closeWhenReady();
      }),
      m_keptApplications([this](QCoro::Task<> flow) { follow(std::move(flow)); }),
      m_tabs(Tabs::all(*this)),
      m_flows([this](const std::exception& failure) { setError(screenText(failure.what())); }) {}

AppState::~AppState() {
    m_isClosing = true;
    m_stopAfterItem.cancel();
    m_stopMeasuring.cancel();
    for (const auto& each : m_tabs) each->stop();
    m_dialogs.dismissAll();
    // Every member is still whole here, so that the flows end as they would have ended in the event loop.
    m_flows.waitForAll();
}

AppState* AppState::create(QQmlEngine* engine, QJSEngine*) {
    return EngineObjects::stateOf(*engine);
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

void AppState::follow(QCoro::Task<> flow) {
    m_flows.add(std::move(flow));
}

bool AppState::isRefreshing() const {
    return std::any_of(m_tabs.begin(), m_tabs.end(), [](const auto& each) { return each->isRefreshing(); });
}

void AppState::refreshAll() {
    if (isRefreshing() || m_isClosing) return;
    refreshDrives();
    lookAtFullDiskAccess();
    for (const auto& each : m_tabs) each->refresh();
    follow(checkLinks());
}

void AppState::lookAgain() {
    if (m_isClosing) return;
    if (!isRefreshing()) return refreshAll();
    for (const auto& each : m_tabs) each->linksChanged();
    follow(checkLinks());
}

void AppState::refreshDrives() {
    m_isDriveScanWanted = true;
    if (m_isScanningDrives) return;
    m_isScanningDrives = true;
    emit isScanningDrivesChanged();
    follow(scanDrives());
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

QCoro::Task<> AppState::checkLinks() {
    const auto asked = jobs();
    const int round = ++m_linkChanges;
    const auto look = [asked] {
        std::vector<bool> standing;
        standing.reserve(asked.size());
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

void AppState::lookAtFullDiskAccess() {
    if (!m_isClosing) follow(tryFullDiskAccess());
}

QCoro::Task<> AppState::tryFullDiskAccess() {
    const auto look = [host = m_host] { return FullDiskAccess::isMissing(host); };
    const bool isMissing = co_await inBackground(Priority::userInitiated, look);
    if (m_missesFullDiskAccess == isMissing) co_return;
    m_missesFullDiskAccess = isMissing;
    emit missesFullDiskAccessChanged();
    if (!isMissing) lookAgain();
}

QString AppState::fullDiskAccessText() const {
    return screenText(FullDiskAccess::loss());
}

QString AppState::fullDiskAccessPage() const {
    return QLatin1String(FullDiskAccess::settingsPage);
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

void AppState::refuseWhenBusy() const {
    if (isBusy() || m_isClosing) throw Refusal("Another item is being moved. Try again when it is done.");
}

UnderWay::Hold AppState::prepare() {
    refuseWhenBusy();
    return m_underWay.prepare();
}

UnderWay::Hold AppState::act(Dialog closingQuestion) {
    refuseWhenBusy();
    return m_underWay.act(std::move(closingQuestion));
}

UnderWay::HoldBeside AppState::actBeside(Dialog closingQuestion) {
    return m_underWay.actBeside(std::move(closingQuestion));
}

bool AppState::mayClose() {
    if (!m_underWay.closingQuestion()) return true;
    if (!m_isAskingToClose && !m_isClosing) follow(askToClose());
    return false;
}

QCoro::Task<> AppState::askToClose() {
    m_isAskingToClose = true;
    const Dialog question = *m_underWay.closingQuestion();
    const int answer = co_await m_dialogs.ask(question);
    m_isAskingToClose = false;
    if (answer != 0) co_return;
    m_isClosing = true;
    m_stopAfterItem.cancel();
    closeWhenReady();
}

void AppState::closeWhenReady() {
    if (m_isClosing && !m_underWay.closingQuestion()) emit readyToClose();
}

void AppState::setSelectedDrive(std::optional<DriveInfo> drive) {
    if (m_selectedDrive == drive) return;
    m_selectedDrive = std::move(drive);
    emit selectedDriveChanged();
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
