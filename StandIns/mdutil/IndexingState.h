#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string_view>

/// What the indexer of a machine in a folder would say of its volumes.
namespace tarvik::mdutil::IndexingState {

enum class State { enabled, disabled, readOnly, unknown };

/// The state of the volume at `path`. The machine's volumes are its `root`, `System/Volumes/Data` and the folders in
/// `Volumes`; anything else is unknown, and so is everything without a machine. A file `.metadata_never_index` at the
/// top of a volume disables its index; one that is mounted read-only has an index that is.
State of(const fs::path& path, const std::optional<fs::path>& root);
/// As the Mac's tool words it, which its manual page, mdutil(1), leaves open: from published sessions.
std::string_view sentence(State state);

}  // namespace tarvik::mdutil::IndexingState
