#pragma once

#include <dirent.h>
#include <string_view>

/// What the tool leaves out without a word.
namespace tarvik::ditto::PassedOver {

/// `type` is one of the system's DT_ values.
inline bool isByType(unsigned type) {
    return type == DT_SOCK || type == DT_FIFO;
}

/// Names that file servers give to files that are open and have been removed.
inline bool isByName(std::string_view name) {
    return name.starts_with(".nfs") || name.starts_with(".afpDeleted");
}

}  // namespace tarvik::ditto::PassedOver
