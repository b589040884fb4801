#include "State/Symlinks/SymlinksState.h"

#include "Discovery/SymlinkScanner.h"
#include "State/Shared/AppState.h"
#include "State/Shared/EngineObjects.h"
#include "State/Threads/Background.h"

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

SymlinksState::SymlinksState(AppState& app) : TabState(app) {}

SymlinksState* SymlinksState::create(QQmlEngine* engine, QJSEngine*) {
    return &EngineObjects::stateOf(*engine)->tab<SymlinksState>();
}

void SymlinksState::refreshSymlinks() {
    m_isScanWanted = true;
    // What is being measured now would be old when it is there.
    m_stopSizing.cancel();
    if (m_isScanning || app().isClosing()) return;
    m_isScanning = true;
    follow(scanSymlinks());
}

QCoro::Task<> SymlinksState::scanSymlinks() {
    const auto end = qScopeGuard([this] { m_isScanning = false; });
    const auto list = [host = host()] { return SymlinkScanner::links(SymlinkScanner::defaultRoots(host)); };
    while (std::exchange(m_isScanWanted, false) && !app().isClosing()) {
        const Cancellation cancellation = m_stopSizing = {};
        // The links are there in an instant; to measure what they lead to may take minutes.
        const auto links = co_await inBackground(Priority::utility, list);
        m_symlinks.replaceAll(withSizesOf(symlinks(), links));

        const auto measure = [host = host(), links, cancellation] {
            return SymlinkScanner::measured(host, links, cancellation);
        };
        auto measured = co_await inBackground(Priority::utility, measure);
        if (!cancellation.isCancelled()) m_symlinks.replaceAll(std::move(measured));
    }
}

}  // namespace tarvik
