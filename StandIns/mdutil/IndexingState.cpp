#include "mdutil/IndexingState.h"

#include "Platform/Files/Files.h"

#include <sys/statvfs.h>

namespace tarvik::mdutil::IndexingState {

namespace {

bool isVolumeOf(const fs::path& folder, const fs::path& root) {
    return folder == root || folder == root / "System/Volumes/Data" || folder.parent_path() == root / "Volumes";
}

}  // namespace

State of(const fs::path& path, const std::optional<fs::path>& root) {
    const auto realRoot = root ? Files::resolved(*root) : std::nullopt;
    const auto folder = Files::resolved(path);
    if (!realRoot || *realRoot == "/" || !folder || !Files::isFolder(*folder) || !isVolumeOf(*folder, *realRoot))
        return State::unknown;
    if (Files::itemExists(*folder / ".metadata_never_index")) return State::disabled;
    struct statvfs status {};
    if (::statvfs(folder->c_str(), &status) != 0) return State::unknown;
    return status.f_flag & ST_RDONLY ? State::readOnly : State::enabled;
}

std::string_view sentence(State state) {
    switch (state) {
        case State::enabled:
            return "Indexing enabled. ";
        case State::disabled:
            return "Indexing disabled.";
        case State::readOnly:
            return "Index is read-only.";
        case State::unknown:
            break;
    }
    return "Error: unknown indexing state.";
}

}  // namespace tarvik::mdutil::IndexingState
