#pragma once

#include "Platform/Basics/Path.h"
#include "State/Lists/RecordListModel.h"
#include "UninstallRun/AppUninstallSession.h"
#include "UninstallRun/UninstallUndo.h"

#include <QString>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarvik {

/// An uninstall of the past, and how it stands with its items once the disk has been looked at.
struct PastUninstall {
    AppUninstallSession session;
    std::optional<std::vector<UninstallUndo::Item>> items;

    bool operator==(const PastUninstall&) const = default;
};

/// A line of the list of past uninstalls: one of them, or below it one thing that went, or should have.
struct PastUninstallRow {
    enum class Kind { session, item };

    Kind kind = Kind::session;
    std::string sessionId;
    /// Among the lines of one session: what tells them apart.
    std::string itemId;
    QString name;
    /// "November 22, 2026 17:45 · 3 items · 12 MB".
    QString detail;
    /// What a user has to know: what stayed, what cannot come back. Empty when there is nothing.
    QString note;
    /// How it stands, in a word or two, and the tone of that.
    QString state;
    QString tone;
    fs::path path;
    bool isOpen = false;
    bool canPutBack = false;

    bool operator==(const PastUninstallRow&) const = default;

    /// The uninstalls in their order, and below each that is open its items. `home` is written "~". Pure.
    static std::vector<PastUninstallRow> list(const std::vector<PastUninstall>& uninstalls,
                                              const std::set<std::string>& openIds, const fs::path& home);
    static std::vector<Role<PastUninstallRow>> roles();
    static std::string key(const PastUninstallRow& row);
};

}  // namespace tarvik
