#pragma once

#include "Platform/Files/Files.h"

#include <string_view>

/// What the copy tool leaves out without a word: pipes, sockets, and what file servers keep of files that are removed
/// while they are open, as ditto(1) says of itself. Pure.
namespace tarvik::UncopiedItems {

/// `path` is a name, or ends with one.
inline bool isByName(std::string_view path) {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    return name.starts_with(".nfs") || name.starts_with(".afpDeleted");
}

inline bool isByType(Files::ItemType type) {
    return type == Files::ItemType::pipe || type == Files::ItemType::socket;
}

}  // namespace tarvik::UncopiedItems
