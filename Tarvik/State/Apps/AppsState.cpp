#include "State/Apps/AppsState.h"

#include "Discovery/AppScanner.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/ScreenText.h"
#include "State/Shared/AppState.h"
#include "State/Shared/EngineObjects.h"
#include "State/Threads/Background.h"
#include "State/Threads/UiThread.h"

#include <QScopeGuard>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <unordered_map>
#include <utility>

namespace tarvik {

namespace {

constexpr int mostAtATime = 8;
/// How long one of them keeps a thread from other work.
constexpr std::chrono::milliseconds longestTurn{10};

/// Whether the sizes that an entry had are worth showing until it is measured anew.
bool isSameButForSizes(const AppEntry& known, const AppEntry& found) {
    return known.version == found.version && known.dataPaths == found.dataPaths &&
           known.isAlreadySymlinked == found.isAlreadySymlinked;
}

}  // namespace

struct AppsState::Sizing {
    Sizing(std::vector<AppEntry> all, Cancellation stop) : entries(std::move(all)), cancellation(std::move(stop)) {}
    /// The next one that nobody measures yet, from any thread; null when there is none.
    const AppEntry* takeNext() {
        const std::size_t index = next++;
        return index < entries.size() && !cancellation.isCancelled() ? &entries[index] : nullptr;
    }
    bool isOver() const { return next >= entries.size() || cancellation.isCancelled(); }

    const std::vector<AppEntry> entries;
    const Cancellation cancellation;
    std::atomic<std::size_t> next = 0;
};

AppsState::AppsState(AppState& app) : TabState(app) {
    connect(this, &AppsState::selectionChanged, this, &AppsState::selectedTotalChanged);
    // Drives have come or gone.
    connect(&app, &AppState::targetDrivesChanged, this, [this] { follow(lookForAbsent()); });
}

AppsState* AppsState::create(QQmlEngine* engine, QJSEngine*) {
    return &EngineObjects::stateOf(*engine)->tab<AppsState>();
}

void AppsState::refreshApps() {
    if (m_isScanningApps || app().isClosing()) return;
    setScanningApps(true);
    setSizeProgress(0, m_sizeTotal);
    follow(scanApps());
}

QCoro::Task<> AppsState::scanApps() {
    const auto end = qScopeGuard([this] {
        setScanningApps(false);
        if (std::exchange(m_isScanDueAgain, false)) refreshApps();
    });
    const auto look = [host = host()] { return AppScanner::discoverMetadata(host); };
    std::vector<AppEntry> entries = co_await inBackground(Priority::userInitiated, look);
    setSizeProgress(0, static_cast<int>(entries.size()));
    takeApps(entries);
    // A drive that does not answer holds up no size of what is on others.
    follow(lookForAbsent());
    co_await computeSizes(std::move(entries));
    sortAppsBySize();
}

QCoro::Task<> AppsState::lookForAbsent() {
    // A drive that does not answer holds one thread, and no more of them.
    m_isLookDue = true;
    if (m_isLooking) co_return;
    m_isLooking = true;
    const auto end = qScopeGuard([this] { m_isLooking = false; });
    while (std::exchange(m_isLookDue, false)) co_await lookOnceForAbsent();
}

QCoro::Task<> AppsState::lookOnceForAbsent() {
    std::vector<fs::path> moved;
    for (const AppRow& row : apps())
        if (row.entry.isAlreadySymlinked) moved.push_back(row.entry.bundlePath);
    if (moved.empty() || app().isClosing()) co_return;
    const auto look = [moved] {
        std::set<fs::path> absent;
        for (const fs::path& bundle : moved)
            if (!Files::exists(bundle)) absent.insert(bundle);
        return absent;
    };
    const std::set<fs::path> absent = co_await inBackground(Priority::userInitiated, look);
    bool hasComeBack = false;
    for (std::size_t index = 0; index < apps().size(); ++index) {
        AppRow row = apps()[index];
        const bool isAbsent = absent.contains(row.entry.bundlePath);
        if (row.isAbsent == isAbsent) continue;
        row.isAbsent = isAbsent;
        hasComeBack = hasComeBack || !isAbsent;
        m_apps.update(index, std::move(row));
    }
    if (!hasComeBack) co_return;
    // Only now it can be measured.
    m_isScanDueAgain = m_isScanningApps;
    refreshApps();
}

QCoro::Task<> AppsState::computeSizes(std::vector<AppEntry> entries) {
    const auto sizing = std::make_shared<Sizing>(std::move(entries), app().stopMeasuring());
    std::vector<QCoro::Task<>> workers;
    workers.reserve(mostAtATime);
    for (int worker = 0; worker < mostAtATime; ++worker) workers.push_back(sizeOneAfterAnother(sizing));
    // Each is waited for, also when one fails: none may go on behind this flow, in an object that is gone.
    std::exception_ptr failure;
    for (auto& worker : workers) {
        try {
            co_await worker;
        } catch (...) {
            failure = std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
}

QCoro::Task<> AppsState::sizeOneAfterAnother(std::shared_ptr<Sizing> sizing) {
    // Small ones follow each other without a way over the UI thread, which may be drawing. This flow goes on only when
    // what they have posted has been taken.
    const auto measure = [this, host = host(), sizing] {
        const auto end = std::chrono::steady_clock::now() + longestTurn;
        do {
            const AppEntry* entry = sizing->takeNext();
            if (!entry) return;
            AppEntry measured = AppScanner::computeSizes(host, *entry, sizing->cancellation);
            if (sizing->cancellation.isCancelled()) return;  // The sizes are only a part.
            UiThread::post([this, measured = std::move(measured)] {
                takeSizes(measured);
                setSizeProgress(m_sizeProgress + 1, m_sizeTotal);
            });
        } while (std::chrono::steady_clock::now() < end);
    };
    while (!sizing->isOver()) co_await inBackground(Priority::utility, measure);
}

void AppsState::takeApps(std::vector<AppEntry> entries) {
    std::unordered_map<std::string, const AppRow*> known;
    for (const AppRow& row : apps()) known.emplace(AppRow::key(row), &row);
    std::vector<AppRow> rows;
    for (AppEntry& entry : entries) {
        AppRow row{.entry = std::move(entry)};
        row.isSelected = m_selectedAppIDs.contains(row.entry.id);
        row.isExpanded = m_expandedAppIDs.contains(row.entry.id);
        const auto before = known.find(AppRow::key(row));
        if (before != known.end()) row.isAbsent = before->second->isAbsent;
        if (before != known.end() && isSameButForSizes(before->second->entry, row.entry))
            row.entry = row.entry.withSizes(before->second->entry.appSize, before->second->entry.dataPathSizes);
        rows.push_back(std::move(row));
    }
    m_apps.replaceAll(std::move(rows));
    emit selectionChanged();
}

void AppsState::takeSizes(AppEntry entry) {
    const auto& rows = apps();
    const auto row = std::find_if(rows.begin(), rows.end(), [&, path = entry.bundlePath.native()](const AppRow& other) {
        return other.entry.bundlePath.native() == path;
    });
    if (row == rows.end()) return;
    AppRow sized = *row;
    sized.entry = std::move(entry);
    sized.sizesPending = false;
    const bool isSelected = sized.isSelected;
    m_apps.update(static_cast<std::size_t>(row - rows.begin()), std::move(sized));
    if (isSelected) emit selectedTotalChanged();
}

void AppsState::sortAppsBySize() {
    std::vector<AppRow> rows = apps();
    std::stable_sort(rows.begin(), rows.end(), [](const AppRow& left, const AppRow& right) {
        return left.entry.totalSize() > right.entry.totalSize();
    });
    m_apps.replaceAll(std::move(rows));
}

void AppsState::setScanningApps(bool isScanning) {
    if (m_isScanningApps == isScanning) return;
    m_isScanningApps = isScanning;
    emit isScanningAppsChanged();
}

void AppsState::setSizeProgress(int progress, int total) {
    if (m_sizeProgress == progress && m_sizeTotal == total) return;
    m_sizeProgress = progress;
    m_sizeTotal = total;
    emit sizeProgressChanged();
}

void AppsState::setIncludeAppData(bool includes) {
    if (m_includeAppData == includes) return;
    m_includeAppData = includes;
    emit includeAppDataChanged();
    emit selectedTotalChanged();
}

void AppsState::setAppSelected(const FilePath& bundle, bool isSelected) {
    setInSet(m_selectedAppIDs, bundle, isSelected);
}

void AppsState::setAppExpanded(const FilePath& bundle, bool isExpanded) {
    if (!isExpanded) uncheckDataOf(bundle.path);
    setInSet(m_expandedAppIDs, bundle, isExpanded);
}

void AppsState::setInSet(std::set<std::string>& ids, const FilePath& bundle, bool isIn) {
    const AppEntry* entry = appAt(bundle.path);
    if (!entry || ids.contains(entry->id) == isIn) return;
    if (isIn) {
        ids.insert(entry->id);
    } else {
        ids.erase(entry->id);
    }
    updateAppRows();
}

const AppEntry* AppsState::appAt(const fs::path& bundle) const {
    const auto row = std::find_if(apps().begin(), apps().end(),
                                  [&](const AppRow& other) { return other.entry.bundlePath == bundle; });
    return row == apps().end() ? nullptr : &row->entry;
}

void AppsState::setAppsSelected(const std::vector<fs::path>& bundles, bool areSelected) {
    const std::set<fs::path> wanted(bundles.begin(), bundles.end());
    for (const AppRow& row : apps()) {
        if (!wanted.contains(row.entry.bundlePath)) continue;
        if (areSelected) {
            m_selectedAppIDs.insert(row.entry.id);
        } else {
            m_selectedAppIDs.erase(row.entry.id);
        }
    }
    updateAppRows();
}

void AppsState::clearSelection() {
    if (m_selectedAppIDs.empty()) return;
    m_selectedAppIDs.clear();
    updateAppRows();
}

void AppsState::updateAppRows() {
    for (std::size_t index = 0; index < apps().size(); ++index) {
        const AppRow& known = apps()[index];
        const bool isSelected = m_selectedAppIDs.contains(known.entry.id);
        const bool isExpanded = m_expandedAppIDs.contains(known.entry.id);
        if (known.isSelected == isSelected && known.isExpanded == isExpanded) continue;
        AppRow row = known;
        row.isSelected = isSelected;
        row.isExpanded = isExpanded;
        m_apps.update(index, std::move(row));
    }
    emit selectionChanged();
}

std::vector<AppEntry> AppsState::selectedApps() const {
    std::vector<AppEntry> selected;
    for (const AppRow& row : apps())
        if (row.isSelected) selected.push_back(row.entry);
    return selected;
}

std::vector<AppEntry> AppsState::selectedMovableApps() const {
    std::vector<AppEntry> movable = selectedApps();
    std::erase_if(movable, [](const AppEntry& entry) { return entry.isAlreadySymlinked; });
    return movable;
}

std::vector<AppEntry> AppsState::selectedRestorableApps() const {
    std::vector<AppEntry> restorable = selectedApps();
    std::erase_if(restorable, [](const AppEntry& entry) { return !entry.isAlreadySymlinked; });
    return restorable;
}

std::int64_t AppsState::selectedTotalBytes() const {
    std::int64_t bytes = 0;
    for (const AppRow& row : apps()) {
        if (!row.isSelected) continue;
        if (!row.entry.isAlreadySymlinked) bytes += row.entry.appSize;
        if (m_includeAppData) bytes += row.entry.dataSize;
    }
    return bytes;
}

QString AppsState::selectedTotalText() const {
    return screenText(SizeCalculator::format(selectedTotalBytes()));
}

}  // namespace tarvik
