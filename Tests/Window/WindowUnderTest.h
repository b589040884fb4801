#pragma once

#include "Platform/Machine/Host.h"
#include "State/Apps/AppsState.h"
#include "State/Folders/FoldersState.h"
#include "State/Shared/AppState.h"
#include "State/Shared/WindowDialogs.h"
#include "Window/RecordedDesktop.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

namespace tarvik::test {

/// The real window over a real `AppState`, driven as a user would: look for a thing, click it, press keys, read.
///
/// Things are found by their `objectName`; "a/b" is the b inside a. Only what is shown is found. The names:
///
/// - shell: rootView, toolbarTitle, preparingSpinner, refreshAllButton, tabContent, infoToast, errorToast (each:
/// toastText, toastTimer)
/// - sidebar: appName, tabList, tab-NAME, drivesTitle, refreshDrivesButton, driveSpinner, noDrivesText, driveList,
///   bootFree
/// - a drive, drive-NAME: driveIcon, driveName, driveFree, driveTotal, driveCapacity, driveCheckMark
/// - Apps tab: appsTab, appsHeading, appsCount, sizingBar, appsSpinner, refreshAppsButton, viewPicker (each choice:
///   viewPicker-onDrive, -local, -all), appSearch, appSearchClear, selectAllBox, sortPicker (-size, -name, -risk),
///   hideRiskyBox, includeDataBox, appList, discoveringText, emptyApps, noAppsShown
/// - an application, app-NAME: appBox, appIcon, appName, appRisk, appAbsence, appPath, appTotal, appSize, appDataSize,
///   appSizeSpinner, appMoveBackButton, appChevron
/// - below the applications, appsActionBar: selectionText, targetText, targetFree, clearSelectionButton,
///   restoreSelectedButton, moveAppsButton
/// - Symlinks tab: symlinksTab, symlinksHeading, symlinksText, rescanButton, symlinkList, noSymlinks
/// - a link, symlink-NAME: symlinkPath, symlinkTarget, symlinkSize, symlinkState, symlinkMoveBackButton
/// - Folders tab: foldersTab, foldersHeading, foldersText
/// - source card: sourceCard, sourceDropArea, sourceTitle, sourceName, sourcePath, sourceSize, sourceSpinner,
///   clearSourceButton, sourceProblem, sourceLink, chooseButton, sourceHint, moveButton, sourceMoveBackButton
/// - quick picks: quickPicksTitle, quickPickList, quickPick-LABEL (each: quickPickSize), noQuickPicks
/// - Dedupe tab: dedupeTab, dedupeHeading, dedupeText, dedupeScanButton, rescanningDuplicates, scanningDuplicates,
///   duplicatesNeverScanned, dedupeList, dedupeSummary, groupsTile, removeTile, spaceTile (each: tileValue, tileTitle),
///   removeDuplicatesButton, dedupeSpinner, dedupeFailure-INDEX, noDuplicates
/// - a group of duplicates, dedupeGroup-NAME: dedupeName, dedupeCount, dedupeKeep, dedupeRemove-INDEX (the last two:
///   dedupeVerb, dedupePath, dedupeSize, dedupeTarget)
/// - jobs panel: jobsPanel, jobsTitle, jobsSummary, jobsCurrent, timeLeft, jobsBar, foldButton, closeRunButton,
/// jobList,
///   job-LABEL, restoreRow
/// - a job, or the restore: transferLabel, transferFrom, transferTo, transferBytes, transferStatus, transferBar,
///   transferFailure, moveBackButton
/// - dialog: alertDialog, alertTitle, alertDetails, alertText, alertButton-INDEX
/// - about: aboutDialog, aboutName, aboutVersion, aboutText, closeAboutButton
/// - the menu of a row: itemMenu, revealItem, copyPathItem
/// - above the tab: fullDiskAccessNotice, appManagementNotice (each: openSettingsButton, sendNoticeAwayButton)
class WindowUnderTest {
public:
    /// Whether the window is there once its first look at the machine has ended, or in the middle of that.
    enum class FirstLook { hasEnded, isUnderWay };
    /// `hasMenus` says whether its desktop shows menus above windows.
    explicit WindowUnderTest(const Host& host, QSize size = {1400, 900}, bool hasMenus = false,
                             FirstLook firstLook = FirstLook::hasEnded);
    ~WindowUnderTest();

    AppState& state() { return *m_state; }
    AppsState& appsState() { return m_state->tab<AppsState>(); }
    FoldersState& foldersState() { return m_state->tab<FoldersState>(); }
    QQuickWindow& window() { return *m_window; }
    const RecordedDesktop& desktop() const { return *m_desktop; }

    /// The item that is shown under this name, or null.
    QQuickItem* find(const QString& name) const;
    /// The same, waited for. @throws std::runtime_error when it does not come.
    QQuickItem& item(const QString& name) const;
    bool isShown(const QString& name) const { return find(name) != nullptr; }
    QString text(const QString& name) const { return item(name).property("text").toString(); }
    bool isEnabled(const QString& name) const { return item(name).isEnabled(); }
    bool hasFocus(const QString& name) const { return item(name).hasActiveFocus(); }

    /// @throws std::runtime_error when its middle does not come to be within the window.
    void click(const QString& name, Qt::MouseButton button = Qt::LeftButton);
    void type(const QString& text);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Presses a key and keeps it down: its repetitions come, as many as asked for, and no release.
    void holdDown(Qt::Key key, int repetitions);
    void letUp(Qt::Key key);
    void resize(QSize size) { m_window->resize(size); }
    void openTab(const QString& tab) { click("tab-" + tab); }
    /// Takes `path` as the folder panel of the Folders tab gives it, and brings that tab into sight.
    void chooseFolder(const fs::path& path);
    /// Drops `path` on the named item.
    void drop(const fs::path& path, const QString& name);

    /// Lets events run until `condition` holds. False when it does not come to hold.
    bool waitUntil(const std::function<bool()>& condition) const;
    bool waitUntilShown(const QString& name) const;
    bool waitUntilHidden(const QString& name) const;
    bool waitForText(const QString& name, const QString& text) const;

    /// Writes what is shown to the pictures folder of the build, once all that moves has come to rest.
    void savePicture(const std::string& name) const;

private:
    std::unique_ptr<WindowDialogs> m_dialogs;
    std::unique_ptr<RecordedDesktop> m_desktop;
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QQuickWindow* m_window = nullptr;
};

}  // namespace tarvik::test
