#include "State/Uninstall/PastUninstalls.h"

#include "State/Lists/ScreenText.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <utility>

namespace tarvik {

PastUninstalls::PastUninstalls(fs::path home, QObject* parent) : QObject(parent), m_home(std::move(home)) {}

void PastUninstalls::setPuttingBackId(const QString& id) {
    if (m_puttingBackId == id) return;
    m_puttingBackId = id;
    emit puttingBackChanged();
}

void PastUninstalls::setSessions(std::vector<AppUninstallSession> sessions) {
    std::unordered_map<std::string, std::optional<std::vector<UninstallUndo::Item>>> known;
    for (PastUninstall& past : m_past) known.emplace(past.session.id, std::move(past.items));
    m_past.clear();
    for (const AppUninstallSession& session : sessions) {
        const auto before = known.find(session.id);
        m_past.push_back({session, before == known.end() ? std::nullopt : before->second});
    }
    m_sessions = std::move(sessions);
    updateRows();
}

void PastUninstalls::setItems(const std::vector<std::pair<std::string, std::vector<UninstallUndo::Item>>>& items) {
    std::unordered_map<std::string, std::vector<UninstallUndo::Item>> found;
    for (const auto& [id, ofSession] : items) found.insert_or_assign(id, ofSession);
    for (PastUninstall& past : m_past)
        if (const auto known = found.find(past.session.id); known != found.end()) past.items = known->second;
    updateRows();
}

const AppUninstallSession* PastUninstalls::find(const QString& id) const {
    const auto found = std::find_if(m_sessions.begin(), m_sessions.end(),
                                    [&](const AppUninstallSession& session) { return uniqueText(session.id) == id; });
    return found == m_sessions.end() ? nullptr : &*found;
}

void PastUninstalls::setRowOpen(int row, bool isOpen) {
    if (row < 0 || static_cast<std::size_t>(row) >= rows().size()) return;
    const PastUninstallRow& line = rows()[static_cast<std::size_t>(row)];
    if (line.kind != PastUninstallRow::Kind::session || line.isOpen == isOpen) return;
    if (isOpen) return open(line.sessionId);
    m_openIds.erase(std::string(line.sessionId));
    updateRows();
}

void PastUninstalls::open(const std::string& id) {
    m_openIds.insert(id);
    updateRows();
}

void PastUninstalls::updateRows() {
    m_rows.replaceAll(PastUninstallRow::list(m_past, m_openIds, m_home));
    emit changed();
}

}  // namespace tarvik
