#include "State/Jobs/RestoreRun.h"

#include "State/Jobs/JobRow.h"
#include "State/Lists/ScreenText.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

RestoreRun::RestoreRun(std::vector<WayBack::Plan> waysBack, std::vector<std::int64_t> sizes)
    : m_waysBack(std::move(waysBack)), m_sizes(std::move(sizes)) {}

void RestoreRun::begin(std::size_t index) {
    m_index = index;
    m_progress = {};
}

void RestoreRun::report(const ByteProgress& progress) {
    m_progress = {progress.copied, std::max(progress.total, m_progress.total)};
}

void RestoreRun::end(const QString& outcome, bool hasFailed) {
    m_outcome = outcome;
    m_hasFailed = hasFailed;
}

const WayBack::Plan& RestoreRun::current() const {
    static const WayBack::Plan none;
    return isEmpty() ? none : m_waysBack[m_index];
}

QString RestoreRun::label() const {
    return screenPath(current().link.filename());
}

QString RestoreRun::from() const {
    return screenPath(current().target);
}

QString RestoreRun::to() const {
    return screenPath(current().link);
}

QString RestoreRun::bytes() const {
    return m_progress.isKnown() ? bytesText(m_progress) : QString();
}

double RestoreRun::fraction() const {
    return isDone() ? 1 : m_progress.fraction();
}

ByteProgress RestoreRun::all() const {
    if (m_sizes.size() != m_waysBack.size()) return m_waysBack.size() == 1 ? m_progress : ByteProgress{};
    ByteProgress all;
    for (std::size_t index = 0; index < m_sizes.size(); ++index) {
        all.total += m_sizes[index];
        if (index < m_index) all.copied += m_sizes[index];
    }
    all.copied += std::min(m_progress.copied, m_sizes.empty() ? 0 : m_sizes[m_index]);
    return all;
}

QString RestoreRun::summary() const {
    if (m_waysBack.size() < 2) return {};
    if (!m_outcome.isEmpty()) return m_outcome;
    return QStringLiteral("%1 of %2").arg(m_index + 1).arg(std::ssize(m_waysBack));
}

}  // namespace tarvik
