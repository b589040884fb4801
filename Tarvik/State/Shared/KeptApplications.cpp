#include "State/Shared/KeptApplications.h"

#include "MovePlan/AppManagement.h"
#include "State/Lists/ScreenText.h"
#include "State/Threads/Background.h"

#include <algorithm>
#include <utility>

namespace tarvik {

namespace {

using Failed = KeptApplications::Failed;

/// Those whose failure was that the system keeps them. A lock gives the same errno value, but fails in other words.
std::vector<Failed> keptOf(std::vector<Failed> failed) {
    std::erase_if(failed, [](const Failed& each) { return AppManagement::refusalOf(each.item) != each.reason; });
    return failed;
}

}  // namespace

QString KeptApplications::text() const {
    return m_kept.empty() ? QString() : screenText(m_kept.front().reason);
}

QString KeptApplications::settingsPage() const {
    return QLatin1String(AppManagement::settingsPage);
}

void KeptApplications::add(std::vector<Failed> failed) {
    if (!failed.empty()) m_follow(take(std::move(failed)));
}

QCoro::Task<> KeptApplications::take(std::vector<Failed> failed) {
    const auto look = [failed] { return keptOf(failed); };
    const std::vector<Failed> found = co_await inBackground(Priority::userInitiated, look);
    if (found.empty()) co_return;
    ++m_round;
    std::vector<Failed> kept = m_kept;
    for (const Failed& each : found) {
        const auto before =
            std::find_if(kept.begin(), kept.end(), [&](const Failed& one) { return one.item == each.item; });
        if (before == kept.end())
            kept.push_back(each);
        else
            *before = each;
    }
    setKept(std::move(kept));
}

void KeptApplications::lookAgain() {
    if (!m_kept.empty()) m_follow(tryAgain());
}

QCoro::Task<> KeptApplications::tryAgain() {
    const int round = ++m_round;
    const auto look = [kept = m_kept] { return keptOf(kept); };
    std::vector<Failed> kept = co_await inBackground(Priority::userInitiated, look);
    if (round == m_round) setKept(std::move(kept));
}

void KeptApplications::forget() {
    ++m_round;
    setKept({});
}

void KeptApplications::setKept(std::vector<Failed> kept) {
    const QString before = text();
    m_kept = std::move(kept);
    if (text() != before) emit textChanged();
}

}  // namespace tarvik
