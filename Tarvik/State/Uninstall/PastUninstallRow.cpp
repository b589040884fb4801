#include "State/Uninstall/PastUninstallRow.h"

#include "Applications/DataPathSize.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"
#include "UninstallRun/UninstallSessionId.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

namespace tarvik {

namespace {

using PastRow = PastUninstallRow;
using ItemState = UninstallUndo::Item::State;
using MovedItem = AppUninstallSession::MovedItem;

QString joined(const QStringList& parts) {
    return parts.join(QStringLiteral(" · "));
}

QString countedText(std::size_t count, std::string_view singular) {
    return screenText(Text::counted(static_cast<std::int64_t>(count), singular));
}

QString timeText(std::chrono::system_clock::time_point time) {
    const auto since = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch());
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(since.count()), QStringLiteral("MMMM d, yyyy HH:mm"));
}

std::size_t countOf(const PastUninstall& past, ItemState state) {
    if (!past.items) return 0;
    return static_cast<std::size_t>(
        std::count_if(past.items->begin(), past.items->end(), [&](const auto& item) { return item.state == state; }));
}

bool isInterrupted(const AppUninstallSession& session) {
    return !UninstallSessionId::journalNameOf(session.id).empty();
}

/// Of an interrupted run alone: what it has tried and failed at has a reason, or a place that it was to go to.
bool wasNotReached(const AppUninstallSession& session, const MovedItem& item) {
    return isInterrupted(session) && !item.succeeded && !item.error && !item.trashedTo && !item.stashedTo;
}

QString wordsOfSession(const AppUninstallSession& session) {
    const auto gone = static_cast<std::size_t>(session.goneCount());
    const auto bytes = session.goneBytes();
    return joined({timeText(session.createdAt), countedText(gone, "item"), screenText(SizeCalculator::format(bytes))});
}

QString noteOf(const PastUninstall& past) {
    QStringList notes;
    std::size_t stayed = 0;
    std::size_t notReached = 0;
    for (const MovedItem& item : past.session.movedItems) {
        if (item.succeeded) continue;
        ++(wasNotReached(past.session, item) ? notReached : stayed);
    }
    if (notReached > 0)
        notes.push_back(countedText(notReached, "item") +
                        (notReached == 1 ? QStringLiteral(" was not reached") : QStringLiteral(" were not reached")));
    if (stayed > 0) notes.push_back(countedText(stayed, "item") + QStringLiteral(" could not be removed"));
    const std::size_t stuck = countOf(past, ItemState::stuck);
    if (stuck > 0) notes.push_back(countedText(stuck, "item") + QStringLiteral(" cannot come back"));
    return joined(notes);
}

PastRow rowOfSession(const PastUninstall& past, bool isOpen) {
    PastRow row{.kind = PastRow::Kind::session, .sessionId = past.session.id};
    row.name = screenText(past.session.appName);
    row.detail = wordsOfSession(past.session);
    row.note = noteOf(past);
    row.isOpen = isOpen;
    row.canPutBack = countOf(past, ItemState::waiting) > 0;
    const std::size_t back = countOf(past, ItemState::back);
    if (back > 0 && back == past.items->size()) {
        row.state = QStringLiteral("put back");
        row.tone = QStringLiteral("success");
    } else if (back > 0) {
        row.state = QStringLiteral("partly put back");
        row.tone = QStringLiteral("warning");
    } else if (isInterrupted(past.session)) {
        row.state = QStringLiteral("interrupted");
        row.tone = QStringLiteral("warning");
    }
    return row;
}

PastRow itemRow(const std::string& sessionId, std::size_t position, const fs::path& path, const fs::path& home) {
    PastRow row{.kind = PastRow::Kind::item, .sessionId = sessionId, .itemId = std::to_string(position)};
    row.name = screenText(DataPathSize{path, 0}.displayPath(home));
    row.path = path;
    return row;
}

/// What went, or is back.
PastRow wentRow(const std::string& sessionId, std::size_t position, const UninstallUndo::Item& item,
                const fs::path& home) {
    PastRow row = itemRow(sessionId, position, item.originalPath, home);
    row.detail = screenText(SizeCalculator::format(item.sizeBytes));
    switch (item.state) {
        case ItemState::waiting:
            row.path = item.place;
            break;
        case ItemState::back:
            row.state = QStringLiteral("put back");
            row.tone = QStringLiteral("success");
            break;
        case ItemState::stuck:
            row.state = QStringLiteral("cannot come back");
            row.tone = QStringLiteral("warning");
            row.note = screenText(item.reason);
            break;
    }
    return row;
}

void appendItems(std::vector<PastRow>& rows, const PastUninstall& past, const fs::path& home) {
    const std::string& id = past.session.id;
    std::size_t position = 0;
    if (past.items)
        for (const auto& item : *past.items) rows.push_back(wentRow(id, position++, item, home));
    for (const auto& item : past.session.movedItems) {
        if (item.succeeded) continue;
        PastRow row = itemRow(id, position++, item.originalPath, home);
        row.tone = QStringLiteral("warning");
        if (wasNotReached(past.session, item)) {
            row.state = QStringLiteral("was not reached");
        } else {
            row.state = QStringLiteral("not removed");
            row.note = screenText(item.error.value_or("It was left as it is."));
        }
        rows.push_back(std::move(row));
    }
    for (const std::string& receipt : past.session.forgottenReceipts) {
        PastRow row = itemRow(id, position++, {}, home);
        row.name = screenText(receipt);
        row.state = QStringLiteral("forgotten");
        row.note = QStringLiteral("Receipts do not come back.");
        rows.push_back(std::move(row));
    }
}

}  // namespace

std::vector<PastUninstallRow> PastUninstallRow::list(const std::vector<PastUninstall>& uninstalls,
                                                     const std::set<std::string>& openIds, const fs::path& home) {
    std::vector<PastUninstallRow> rows;
    for (const PastUninstall& past : uninstalls) {
        const bool isOpen = openIds.contains(past.session.id);
        rows.push_back(rowOfSession(past, isOpen));
        if (isOpen) appendItems(rows, past, home);
    }
    return rows;
}

std::vector<Role<PastUninstallRow>> PastUninstallRow::roles() {
    return {
        {"kind",
         [](const PastRow& row) -> QVariant {
             return row.kind == Kind::session ? QStringLiteral("session") : QStringLiteral("item");
         }},
        {"sessionId", [](const PastRow& row) -> QVariant { return uniqueText(row.sessionId); }},
        {"name", [](const PastRow& row) -> QVariant { return row.name; }},
        {"detail", [](const PastRow& row) -> QVariant { return row.detail; }},
        {"note", [](const PastRow& row) -> QVariant { return row.note; }},
        {"stateText", [](const PastRow& row) -> QVariant { return row.state; }},
        {"tone", [](const PastRow& row) -> QVariant { return row.tone; }},
        {"itemPath",
         [](const PastRow& row) -> QVariant {
             return row.path.empty() ? QVariant() : QVariant::fromValue(FilePath(row.path));
         }},
        {"isOpen", [](const PastRow& row) -> QVariant { return row.isOpen; }},
        {"canPutBack", [](const PastRow& row) -> QVariant { return row.canPutBack; }},
    };
}

std::string PastUninstallRow::key(const PastUninstallRow& row) {
    return row.sessionId + "\n" + row.itemId;
}

}  // namespace tarvik
