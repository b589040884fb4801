#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <string_view>

/// The hidden names that items bear for the length of an act. They are made of the item's own name, so that a user who
/// finds one knows what it is; and what is told of the item speaks of it by its own name alone.
namespace tarvik::HiddenName {

/// What an item bears such a name for.
enum class Purpose {
    copy,      ///< it is a copy that is not complete yet
    removal,   ///< it is an original that is about to be removed, or a link that waits for its place
    exchange,  ///< it changes places with another one
};

/// Free hidden names beside an item: for a copy that will stand at `goal`, for an original while it is removed, for an
/// item that changes places with another.
fs::path forCopyTo(const fs::path& goal);
fs::path forRemovalOf(const fs::path& original);
fs::path forExchangeOf(const fs::path& item);

/// What a hidden name tells.
struct Reading {
    Purpose purpose = Purpose::copy;
    /// The item's own name, as far as there was room for it.
    std::string ownName;

    bool operator==(const Reading&) const = default;
};
/// Nothing when the name is none of ours.
std::optional<Reading> read(std::string_view name);
/// Whether it is a name that `item` bears for that purpose, as volumes see names that fold case and normal forms: they
/// may list it in another spelling.
bool isFor(std::string_view name, Purpose purpose, const fs::path& item);

/// What tells of an item under its hidden name, or in a folder of that name, told of its own place.
std::string inOwnName(std::string text, const fs::path& hidden, const fs::path& item);
/// Passes on the MoverError or Failure that is being handled, told so.
[[noreturn]] void rethrowInOwnName(const fs::path& hidden, const fs::path& item);

}  // namespace tarvik::HiddenName
