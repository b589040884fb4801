#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/Files.h"

#include <cstdint>
#include <optional>

namespace tarvik {

/// What tells an item from any other that may come to stand at its path, also after it was renamed and after its volume
/// was mounted anew. It says nothing of what is in the item. Times are nanoseconds since 1970.
struct ItemIdentity {
    Files::ItemType type = Files::ItemType::unknown;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    /// When its content last changed.
    std::int64_t changed = 0;
    /// When it was made; nothing where the volume does not tell.
    std::optional<std::int64_t> born = {};

    /// The item itself, a link not followed; nothing, and errno tells why, when none can be looked at. One status call;
    /// any thread.
    static std::optional<ItemIdentity> of(const fs::path& path);

    /// Whether both tell of one item. A number alone does not: the number of an item that was removed goes to the next
    /// one that is made, and on some volumes (FAT) an item has another one after it was renamed. So where the number is
    /// another one, a copy that kept its times may pass for the item: who searches asks for more.
    bool isSame(const ItemIdentity& other) const;

    bool operator==(const ItemIdentity&) const = default;
};

}  // namespace tarvik
