#include "State/Apps/AppDetails.h"

#include "AppData/CategorizedPaths.h"
#include "Platform/Bundles/CodesignMetadata.h"
#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"
#include "State/Lists/ScreenText.h"
#include "State/Threads/Background.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// The entry with every data path among its sizes, of which those that are not measured yet are 0.
AppEntry withAllPaths(AppEntry entry) {
    for (fs::path& path : entry.dataPaths) path = Files::standardized(path);
    for (DataPathSize& sized : entry.dataPathSizes) sized.path = Files::standardized(sized.path);
    for (const fs::path& path : entry.dataPaths) {
        const bool isListed = std::any_of(entry.dataPathSizes.begin(), entry.dataPathSizes.end(),
                                          [&](const DataPathSize& sized) { return sized.path == path; });
        if (!isListed) entry.dataPathSizes.push_back({path, 0});
    }
    return entry;
}

}  // namespace

AppDetails::AppDetails(QObject* parent) : QObject(parent) {}

AppDetails::~AppDetails() {
    m_cancellation.cancel();
}

void AppDetails::setState(AppsState* state) {
    if (m_state == state) return;
    if (m_state) {
        m_state->disconnect(this);
        m_state->appsModel()->disconnect(this);
    }
    m_state = state;
    if (state) {
        connect(state->appsModel(), &QAbstractItemModel::dataChanged, this, &AppDetails::takeEntryAgain);
        connect(state, &AppsState::checkedDataPathsChanged, this, &AppDetails::updateRows);
        connect(state, &AppsState::dataTrashed, this, &AppDetails::lookAgain);
    }
    restart();
    emit sourceChanged();
}

void AppDetails::setBundle(const FilePath& bundle) {
    if (m_bundle == bundle) return;
    m_bundle = bundle;
    restart();
    emit sourceChanged();
}

void AppDetails::restart() {
    m_cancellation.cancel();
    m_cancellation = {};
    m_entry = {};
    m_tree = {};
    m_verification = {};
    m_isVerifying = m_state && !m_bundle.isEmpty();
    emit verificationChanged();
    takeEntry();
    if (m_isVerifying) verify(this, m_state->host(), m_bundle.path, m_toolLimit, m_cancellation);
}

void AppDetails::takeEntryAgain() {
    const auto known = m_entry;
    const auto& apps = m_state->apps();
    const auto row = std::find_if(apps.begin(), apps.end(),
                                  [&](const AppRow& other) { return other.entry.bundlePath == m_bundle.path; });
    if (row != apps.end() && row->entry != known) takeEntry();
}

void AppDetails::takeEntry() {
    bool isMeasured = false;
    if (m_state) {
        for (const AppRow& row : m_state->apps()) {
            if (row.entry.bundlePath != m_bundle.path) continue;
            m_entry = row.entry;
            isMeasured = !row.sizesPending || !row.entry.dataPathSizes.empty();
        }
    }
    m_tree.setGroups(categorizedPaths(withAllPaths(m_entry)), isMeasured);
    emit entryChanged();
    updateRows();
    lookAgain();
}

void AppDetails::lookAgain() {
    if (m_state && !m_entry.dataPaths.empty())
        look(this, m_state->host(), withAllPaths(m_entry).dataPaths, m_cancellation);
    // The contents of a folder may be others by now.
    for (const DataRow& row : std::vector<DataRow>(rows()))
        if (m_tree.isKnown(row.path) && row.isOpen && !row.isLoading) readFolder(row.path);
}

void AppDetails::readFolder(const fs::path& folder) {
    list(this, m_state->host(), folder, m_cancellation);
}

QCoro::Task<> AppDetails::verify(QPointer<AppDetails> details, Host host, fs::path bundle,
                                 std::chrono::duration<double> toolLimit, Cancellation cancellation) {
    const auto read = [host, bundle, toolLimit, cancellation] {
        Verification result;
        if (cancellation.isCancelled()) return result;  // The row was closed before its turn came.
        result.developer = screenText(CodesignMetadata::teamName(host, bundle, toolLimit));
        if (cancellation.isCancelled()) return result;
        result.notarization = screenText(CodesignMetadata::notarizationStatus(host, bundle, toolLimit));
        return result;
    };
    const Verification found = co_await inBackground(Priority::userInitiated, read);
    if (!details || cancellation.isCancelled()) co_return;
    details->m_verification = found;
    details->m_isVerifying = false;
    emit details->verificationChanged();
}

QCoro::Task<> AppDetails::look(QPointer<AppDetails> details, Host host, std::vector<fs::path> paths,
                               Cancellation cancellation) {
    const auto lookAtThem = [host, paths] { return DataTree::look(host, paths); };
    std::vector<DataTree::Item> items = co_await inBackground(Priority::userInitiated, lookAtThem);
    if (!details || cancellation.isCancelled()) co_return;
    details->m_tree.setItems(std::move(items));
    details->updateRows();
}

QCoro::Task<> AppDetails::list(QPointer<AppDetails> details, Host host, fs::path folder, Cancellation cancellation) {
    const auto listIt = [host, folder] { return DataTree::list(host, folder); };
    const std::vector<DataTree::Item> items = co_await inBackground(Priority::userInitiated, listIt);
    if (!details || cancellation.isCancelled()) co_return;
    details->m_tree.setChildren(folder, items);
    details->updateRows();

    const auto measureThem = [host, items, cancellation] { return DataTree::measure(host, items, cancellation); };
    const auto sizes = co_await inBackground(Priority::utility, measureThem);
    if (!details || !details->m_state || cancellation.isCancelled()) co_return;
    details->m_tree.setSizes(folder, sizes);
    CheckedPaths checked = details->m_state->checkedDataPaths();
    for (const auto& sized : sizes) checked.setBytes(sized.path, sized.bytes);
    details->m_state->setCheckedDataPaths(std::move(checked));
    details->updateRows();
}

void AppDetails::updateRows() {
    static const CheckedPaths nothing;
    const CheckedPaths& checked = m_state ? m_state->checkedDataPaths() : nothing;
    m_checkedCount = static_cast<int>(checked.within(m_entry.dataPaths).size());
    m_checkedSizeText = screenText(SizeCalculator::format(checked.bytesWithin(m_entry.dataPaths)));
    m_rows.replaceAll(m_tree.rows(checked, m_state ? m_state->host().home : fs::path()));
    emit rowsChanged();
}

QString AppDetails::bundleIdText() const {
    return screenText(m_entry.bundleIdentifier.value_or("(none)"));
}

QString AppDetails::itemsText() const {
    return QStringLiteral("%1 items").arg(m_tree.count());
}

QString AppDetails::checkedText() const {
    return screenText(Text::counted(m_checkedCount, "item") + " selected");
}

const DataRow* AppDetails::rowAt(int row) const {
    return row >= 0 && row < m_rows.rowCount() ? &rows()[static_cast<std::size_t>(row)] : nullptr;
}

void AppDetails::toggleChecked(int row) {
    const DataRow* line = rowAt(row);
    if (!m_state || !line || line->isLocked || line->kind == DataRow::Kind::more) return;
    const bool isChecked = line->checked == CheckedPaths::State::all;
    std::vector<CheckedPaths::Sized> items{{line->path, line->bytes.value_or(0)}};
    if (line->kind == DataRow::Kind::category) items = m_tree.tickableIn(line->name);
    CheckedPaths checked = m_state->checkedDataPaths();
    for (const auto& item : items) {
        if (isChecked) {
            checked.uncheck(item.path, [this](const fs::path& folder) { return m_tree.tickableChildren(folder); });
        } else {
            checked.check(item.path, item.bytes);
        }
    }
    m_state->setCheckedDataPaths(std::move(checked));
}

void AppDetails::setOpen(int row, bool isOpen) {
    const DataRow* line = rowAt(row);
    if (!m_state || !line || !line->isDirectory || line->isOpen == isOpen) return;
    const fs::path folder = line->path;
    if (line->kind == DataRow::Kind::file && !m_tree.isKnown(folder)) {
        m_tree.setLoading(folder);
        readFolder(folder);
    } else {
        m_tree.setOpen(*line, isOpen);
    }
    updateRows();
}

void AppDetails::clearChecked() {
    if (!m_state) return;
    CheckedPaths checked = m_state->checkedDataPaths();
    checked.removeWithin(m_entry.dataPaths);
    m_state->setCheckedDataPaths(std::move(checked));
}

void AppDetails::moveToTrash() {
    if (m_state) m_state->moveCheckedDataToTrash(m_bundle);
}

}  // namespace tarvik
