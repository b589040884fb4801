#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/ItemIdentity.h"
#include "Uninstall/UninstallCategory.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// What an uninstall notes while it runs: first all that is to go, then what became of each thing. Its text is a line
/// for each of these, with tabs between the fields; in paths and names `\t`, `\n`, `\r` and `\\` stand for a tab, a
/// line break, a carriage return and a backslash.
struct UninstallJournal {
    /// What became of an item.
    struct End {
        bool succeeded = false;
        /// Where it stands in the Trash, if the Trash told.
        std::optional<fs::path> trashedTo;
        /// The folder beside its place, once the Trash had refused it, whether it got there or not.
        std::optional<fs::path> stashedTo;

        bool operator==(const End&) const = default;
    };
    /// Both paths are absolute and standardized.
    struct Item {
        fs::path path;
        /// The same without links on the way.
        fs::path place;
        UninstallCategory category = UninstallCategory::executable;
        /// In bytes, as it was planned.
        std::int64_t sizeBytes = 0;
        /// What stood there when the run began; nothing when nothing did.
        std::optional<ItemIdentity> identity;
        /// Nothing for one that the run had not come to, or was at when it ended.
        std::optional<End> end = {};
        /// Why the run has left it where it is, as it told; empty where it has not.
        std::string reasonToStay = {};

        bool operator==(const Item&) const = default;
    };

    fs::path appPath;
    std::string appName;
    std::optional<std::string> bundleIdentifier;
    /// To the microsecond.
    std::chrono::system_clock::time_point startedAt;
    std::vector<Item> items;
    std::vector<std::string> forgottenReceipts;
    /// The record that was to take the journal's place.
    std::optional<std::string> sessionId;

    /// More than any application has, so that a forged journal takes no memory to speak of.
    static constexpr std::size_t mostItems = 100'000;

    const Item* itemAt(const fs::path& path) const;

    /// What is written before the first item goes, and the lines that follow it.
    std::string opening() const;
    static std::string lineOf(std::size_t item, const End& end);
    static std::string lineOfStay(std::size_t item, std::string_view reason);
    static std::string lineOfReceipt(std::string_view identifier);
    static std::string lineOfSession(std::string_view id);

    /// Ends a line that could only be written in part, so that it is passed over, and the next one is not.
    static constexpr std::string_view endOfCutLine = "\t\t\t\t\t\t\n";

    /// Nothing when the opening is not whole, or names what no run writes: too many items, a path that is not
    /// standardized or has a NUL in it. What follows is read as far as it goes: a line that was cut, or makes no sense,
    /// is passed over.
    static std::optional<UninstallJournal> parsed(std::string_view text);

    bool operator==(const UninstallJournal&) const = default;
};

}  // namespace tarvik
