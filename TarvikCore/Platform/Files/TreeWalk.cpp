#include "Platform/Files/TreeWalk.h"

#include "Platform/Files/FolderListing.h"
#include "Platform/Files/FolderTrail.h"
#include "Platform/Files/SystemCalls.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <vector>

namespace tarvik {

struct TreeWalk::State {
    struct Level {
        FolderListing listing;
        std::size_t next = 0;
        std::size_t pathLength = 0;  // of the folder's own relative path
    };

    State(const fs::path& root, Options walkOptions) : options(walkOptions), trail(root) {}

    Options options;
    FolderTrail trail;
    // As deep as the walk has ever been: a level's memory serves the next folder at its depth. `open` of them are in
    // use.
    std::vector<Level> levels;
    std::size_t open = 0;
    int rootError = 0;

    Event event = Event::item;
    const char* name = "";
    std::string relativePath;
    Files::ItemType type = Files::ItemType::unknown;
    bool entersNext = false;
    int errorNumber = 0;
    bool statusRead = false;
    int statusError = 0;
    struct stat status {};

    Level& top() { return levels[open - 1]; }

    /// Lists the folder that the trail stands in as a new level. @returns 0 or an errno value.
    int list() {
        if (open == levels.size()) levels.emplace_back();
        Level& level = levels[open++];
        level.next = 0;
        level.pathLength = relativePath.size();
        const int error = level.listing.read(trail.handle(), options.skipsHidden);
        if (options.order == Order::listing) level.listing.sortByName();
        if (options.order == Order::disk) level.listing.sortByInode();
        return error;
    }

    /// Makes an entry of the deepest level the current one.
    void present(std::size_t index, Event what) {
        const Level& level = top();
        event = what;
        name = level.listing.name(index);
        type = level.listing.type(index);
        relativePath.resize(level.pathLength);
        if (!relativePath.empty()) relativePath += '/';
        relativePath += name;
        statusRead = false;
    }

    const struct stat* readStatus() {
        if (!statusRead) {
            statusRead = true;
            statusError = ::fstatat(trail.handle(), name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
        }
        if (statusError == 0) return &status;
        errno = statusError;
        return nullptr;
    }

    Files::ItemType knownType() {
        if (type == Files::ItemType::unknown && readStatus()) type = Files::typeOfMode(status.st_mode);
        return type;
    }

    bool reportUnreadable(int error) {
        event = Event::unreadable;
        errorNumber = error;
        return true;
    }
};

TreeWalk::TreeWalk(const fs::path& root, Options options) : m_state(std::make_unique<State>(root, options)) {
    m_state->rootError = m_state->trail.handle() < 0 ? errno : m_state->list();
}

TreeWalk::~TreeWalk() = default;
TreeWalk::TreeWalk(TreeWalk&&) noexcept = default;
TreeWalk& TreeWalk::operator=(TreeWalk&&) noexcept = default;

int TreeWalk::rootError() const {
    return m_state->rootError;
}

bool TreeWalk::next() {
    State& state = *m_state;
    if (state.entersNext) {
        state.entersNext = false;
        if (const int error = state.trail.enter(state.name)) return state.reportUnreadable(error);
        if (const int error = state.list()) {
            // What could be listed is passed over: an incomplete folder must not look complete.
            --state.open;
            state.trail.leave();
            return state.reportUnreadable(error);
        }
    }
    while (state.open > 0) {
        State::Level& level = state.top();
        if (level.next < level.listing.size()) {
            state.present(level.next++, Event::item);
            if (state.options.skipsHidden && SystemCalls::hasHiddenFlag(folderHandle(), name())) continue;
            state.entersNext = state.knownType() == Files::ItemType::folder;
            return true;
        }
        --state.open;
        if (state.open == 0) break;
        const int error = state.trail.leave();
        state.present(state.top().next - 1, Event::leave);
        if (error) {
            state.top().next = state.top().listing.size();  // The rest of this folder can no longer be reached.
            return state.reportUnreadable(error);
        }
        if (state.options.givesLeave) return true;
    }
    return false;
}

void TreeWalk::skipContents() {
    m_state->entersNext = false;
}

TreeWalk::Event TreeWalk::event() const {
    return m_state->event;
}
const char* TreeWalk::name() const {
    return m_state->name;
}
const std::string& TreeWalk::relativePath() const {
    return m_state->relativePath;
}
int TreeWalk::depth() const {
    return static_cast<int>(m_state->open) - 1;
}
int TreeWalk::folderHandle() const {
    return m_state->trail.handle();
}
Files::ItemType TreeWalk::type() {
    return m_state->knownType();
}
const struct stat* TreeWalk::status() {
    return m_state->readStatus();
}
int TreeWalk::errorNumber() const {
    return m_state->errorNumber;
}

}  // namespace tarvik
