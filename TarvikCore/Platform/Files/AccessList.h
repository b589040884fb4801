#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string_view>
#include <vector>

/// What an access control list says against the removal of an item: chmod(1) of macOS. Other systems have no entries
/// that deny something (acl(5)).
namespace tarvik::AccessList {

/// An entry that denies to remove the item that bears it, or what is in the folder that does.
struct Denial {
    /// Else one user or group.
    bool isForEveryone = false;
    /// It came from a folder further up.
    bool isInherited = false;
    /// The right "delete", and for a folder "delete_child".
    bool coversItem = false;
    bool coversContents = false;
};

/// The entries of the item itself that deny either, a link not followed. None where no list can be read.
std::vector<Denial> denialsAt(const fs::path& item);

/// The entry that keeps an item where it is, by its place and the right that it takes from everyone.
struct Culprit {
    fs::path place;
    std::string_view right;

    bool operator==(const Culprit&) const = default;
};

/// The one entry in the way of the removal of `item`, out of its own and those of the folder that holds it. Nothing
/// when there are several, or when it is none that a user could name from here: to lift another one would not help.
/// Pure.
std::optional<Culprit> culprit(const fs::path& item, const std::vector<Denial>& own,
                               const std::vector<Denial>& ofFolder);
/// The same for the lists as they are. Blocks for two look-ups; any thread.
std::optional<Culprit> culprit(const fs::path& item);

}  // namespace tarvik::AccessList
