#include "Discovery/SymlinkEntry.h"

#include "Platform/Basics/FieldHash.h"

std::size_t std::hash<tarvik::SymlinkEntry>::operator()(const tarvik::SymlinkEntry& entry) const noexcept {
    return tarvik::FieldHash::of(entry.id, entry.location, entry.target, entry.isValid, entry.targetSize);
}
