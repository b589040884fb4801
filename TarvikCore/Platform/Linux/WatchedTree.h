#pragma once

#include "Platform/Basics/Path.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/inotify.h>
#include <unordered_map>
#include <vector>

namespace tarvik {

class TreeWalk;

/// Folders and all folders below them, each watched by itself: inotify(7) knows no trees. One belongs to one thread at
/// a time.
///
/// A folder is watched first and listed then, and what the list shows is told of as new, so that nothing falls between.
/// No event is believed to tell what stands at a name now, for events are late: each time that is looked up, and the
/// system's number of the watch, which is one for each folder, tells whether it is known and where it has come from.
///
/// The folders on the way to a root are watched too, for the root's coming and going. A root behind links is watched
/// where it really is, and told of by its own text.
class WatchedTree {
public:
    /// As in `FileEvents::Listener`.
    struct Teller {
        std::function<void(const std::string& path)> happened;
        std::function<void(const std::string& sentence)> missed;
    };

    /// `inotify` is the handle to watch with; its events are handed over by `handle`.
    WatchedTree(int inotify, const std::vector<fs::path>& roots, Teller teller);

    /// Watches all that is there, and tells of none of it.
    void begin();
    void handle(const inotify_event& event);
    /// After events were lost: looks at everything again, and tells of what has changed since `time`, as far as that
    /// can be seen.
    void lookAgain(std::timespec time);

    /// Whether folders have left the tree whose watches still stand: most come back at once, under another name.
    bool hasLeft() const { return !m_left.empty(); }
    /// Gives up the watches of those that left before `time`.
    void forgetLeft(std::chrono::steady_clock::time_point time);

private:
    struct Root {
        std::string text;
        std::string place;
    };
    struct Folder {
        int watch = -1;
        std::optional<std::size_t> root;  // Set for the folder of a root.
        Folder* above = nullptr;          // Null for a root's, and for one that has left.
        std::string name;
        std::map<std::string, Folder*, std::less<>> below;
        unsigned round = 0;  // Of the last look at everything that met it.
    };
    struct Left {
        int watch;
        std::chrono::steady_clock::time_point time;
    };
    /// A name on the way to a root.
    struct Way {
        std::size_t root;
        std::string name;
        bool operator==(const Way&) const = default;
    };
    enum class Tells { nothing, everything, whatChanged };
    /// A folder that a walk is in.
    struct Level {
        Folder* folder;  // Null when it could not be watched.
        Tells tells;
    };

    int watch(const std::string& path, std::uint32_t mask);
    void watchWayTo(std::size_t root);
    void settleRoot(std::size_t root, Tells tells);
    void settle(Folder& above, const std::string& name);
    void loseRoot(Folder& folder);
    void end(Folder& folder);

    Folder* known(int watch) const;
    /// The folder of a watch, at this place from now on; `isNew` when it was not there before. Null when it cannot be
    /// there, since it holds the place itself.
    Folder* placed(int watch, Folder& above, std::string_view name, bool& isNew);
    void leave(Folder& folder);
    void unlink(Folder& folder);
    void forget(Folder& folder);

    void walk(Folder* top, const std::string& text, const std::string& place, Tells tells);
    Level enter(const Level& level, const TreeWalk& walk);
    bool isToTell(Tells tells, TreeWalk& walk) const;
    void noteUnwatched(int error);
    void miss(const std::string& sentence);

    /// Where the folder is by what is told, or by what is opened; nothing for one that has left.
    std::optional<std::string> pathOf(const Folder& folder, std::string Root::*form) const;

    const int m_inotify;
    const Teller m_teller;
    std::vector<Root> m_roots;
    std::vector<Folder*> m_rootFolders;  // Null while a root is not there.
    std::unordered_map<int, std::unique_ptr<Folder>> m_folders;
    std::unordered_map<int, std::vector<Way>> m_ways;
    std::deque<Left> m_left;
    std::set<std::string> m_missed;
    // Most events come in runs in one folder: its path is kept until any folder changes its place.
    int m_pathWatch = -1;
    std::string m_path;
    std::string m_eventPath;
    std::timespec m_changedSince{};
    unsigned m_round = 0;
};

}  // namespace tarvik
