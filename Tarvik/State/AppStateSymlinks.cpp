// The links of `AppState` that moves have left.

#include "Discovery/SymlinkScanner.h"
#include "State/AppState.h"
#include "State/Background.h"

#include <QScopeGuard>

#include <algorithm>
#include <utility>
#include <vector>

namespace tarvik {

namespace {

/// The links with the sizes that earlier ones had: what a link leads to has seldom changed.
std::vector<SymlinkEntry> withSizesOf(const std::vector<SymlinkEntry>& known, std::vector<SymlinkEntry> links) {
    for (SymlinkEntry& link : links) {
        const auto before = std::find_if(known.begin(), known.end(), [&](const SymlinkEntry& other) {
            return other.id == link.id && other.target == link.target && other.isValid == link.isValid;
        });
        if (before != known.end()) link.targetSize = before->targetSize;
    }
    return links;
}

}  // namespace

void AppState::refreshSymlinks() {
    m_isSymlinkScanWanted = true;
    // What is being measured now would be old when it is there.
    m_stopSizingSymlinks.cancel();
    if (m_isScanningSymlinks || m_isClosing) return;
    m_isScanningSymlinks = true;
    m_flows.add(scanSymlinks());
}

QCoro::Task<> AppState::scanSymlinks() {
    const auto end = qScopeGuard([this] { m_isScanningSymlinks = false; });
    const auto list = [host = m_host] { return SymlinkScanner::links(SymlinkScanner::defaultRoots(host)); };
    while (std::exchange(m_isSymlinkScanWanted, false) && !m_isClosing) {
        const Cancellation cancellation = m_stopSizingSymlinks = {};
        // The links are there in an instant; to measure what they lead to may take minutes.
        auto links = co_await inBackground(Priority::utility, list);
        m_symlinks.replaceAll(withSizesOf(symlinks(), std::move(links)));

        const auto measure = [host = m_host, cancellation] {
            return SymlinkScanner::scan(host, SymlinkScanner::defaultRoots(host), cancellation);
        };
        auto measured = co_await inBackground(Priority::utility, measure);
        if (!cancellation.isCancelled()) m_symlinks.replaceAll(std::move(measured));
    }
}

}  // namespace tarvik
