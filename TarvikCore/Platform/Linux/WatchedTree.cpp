#include "Platform/Linux/WatchedTree.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tarvik {

namespace {

/// Of IN_CLOSE_WRITE there is none: it comes also when nothing was written. So what is changed through a mapping of the
/// file into memory alone is not seen, see inotify(7).
constexpr std::uint32_t treeEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY | IN_ATTRIB;
constexpr std::uint32_t wayEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

/// What is really meant by `path` as long as its links stay as they are, also where its last parts are not there.
fs::path realPlace(const fs::path& path) {
    if (const auto real = Files::resolved(path)) return *real;
    return path == path.parent_path() ? path : realPlace(path.parent_path()) / path.filename();
}

void append(std::string& path, std::string_view name) {
    if (!path.ends_with('/')) path += '/';
    path += name;
}

std::string joined(std::string path, std::string_view name) {
    append(path, name);
    return path;
}

/// Whether there is nothing to watch, rather than no way to do it.
bool isGone(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

bool isAtOrAfter(const std::timespec& time, const std::timespec& other) {
    return std::pair(time.tv_sec, time.tv_nsec) >= std::pair(other.tv_sec, other.tv_nsec);
}

}  // namespace

WatchedTree::WatchedTree(int inotify, const std::vector<fs::path>& roots, Teller teller)
    : m_inotify(inotify), m_teller(std::move(teller)) {
    std::vector<std::pair<fs::path, fs::path>> places;  // Where the root is, and its own text.
    places.reserve(roots.size());
    for (const fs::path& root : roots) places.emplace_back(realPlace(Files::standardized(root)), root);
    std::stable_sort(places.begin(), places.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    for (const auto& [place, text] : places)
        // What lies in another root is watched with that one.
        if (m_roots.empty() || !Files::isAtOrBelow(place, m_roots.back().place))
            m_roots.push_back({Files::standardized(text).native(), place.native()});
    m_rootFolders.resize(m_roots.size());
}

void WatchedTree::begin() {
    for (std::size_t root = 0; root < m_roots.size(); ++root) settleRoot(root, Tells::nothing);
}

void WatchedTree::handle(const inotify_event& event) {
    const std::string_view name(event.len > 0 ? event.name : "");
    if (const auto ways = m_ways.find(event.wd); ways != m_ways.end()) {
        const auto met = ways->second;
        if ((event.mask & IN_IGNORED) != 0) m_ways.erase(ways);
        for (const Way& way : met)
            if (way.name == name || (event.mask & IN_IGNORED) != 0) settleRoot(way.root, Tells::everything);
    }
    Folder* const folder = known(event.wd);
    if (!folder) return;
    if ((event.mask & IN_IGNORED) != 0) return end(*folder);
    if (m_pathWatch != event.wd) {
        const auto path = pathOf(*folder, &Root::text);
        if (!path) return;  // What happens where it has gone is nobody's business.
        m_path = *path;
        m_pathWatch = event.wd;
    }
    m_eventPath = m_path;
    if (!name.empty()) append(m_eventPath, name);
    m_teller.happened(m_eventPath);
    const bool isComingOrGoing = (event.mask & wayEvents) != 0;
    if ((event.mask & IN_ISDIR) != 0 && isComingOrGoing && !name.empty()) settle(*folder, std::string(name));
}

/// The system has ended a watch: the folder was removed, or its volume went, under which there may be another folder.
void WatchedTree::end(Folder& folder) {
    const auto root = folder.root;
    Folder* const above = folder.above;
    const std::string name = folder.name;
    if (root) loseRoot(folder);
    unlink(folder);
    forget(folder);
    if (root) settleRoot(*root, Tells::everything);
    if (above) settle(*above, name);
}

void WatchedTree::lookAgain(std::timespec time) {
    m_changedSince = time;
    ++m_round;
    for (std::size_t root = 0; root < m_roots.size(); ++root) {
        const Folder* const before = m_rootFolders[root];
        settleRoot(root, Tells::everything);
        Folder* const folder = m_rootFolders[root];
        if (!folder || folder != before) continue;
        folder->round = m_round;
        walk(folder, m_roots[root].text, m_roots[root].place, Tells::whatChanged);
    }
    std::vector<Folder*> gone;
    for (const auto& entry : m_folders)
        if (entry.second->round != m_round && entry.second->above) gone.push_back(entry.second.get());
    // First all paths are told: they lead through one another.
    for (const Folder* folder : gone)
        if (const auto path = pathOf(*folder, &Root::text)) m_teller.happened(*path);
    for (Folder* folder : gone) leave(*folder);
    miss(
        "So much happened at once that the system left out some of its reports: what came and went again meanwhile may "
        "be missing.");
}

void WatchedTree::forgetLeft(std::chrono::steady_clock::time_point time) {
    while (!m_left.empty() && m_left.front().time < time) {
        Folder* const folder = known(m_left.front().watch);
        m_left.pop_front();
        if (folder && !folder->above && !folder->root) forget(*folder);
    }
}

/// @returns the number of the watch, or -1 and errno.
int WatchedTree::watch(const std::string& path, std::uint32_t mask) {
    return ::inotify_add_watch(m_inotify, path.c_str(), mask | IN_ONLYDIR | IN_MASK_ADD);
}

void WatchedTree::watchWayTo(std::size_t root) {
    fs::path folder = "/";
    for (const fs::path& part : fs::path(m_roots[root].place).relative_path()) {
        const int number = watch(folder.native(), wayEvents);
        if (number < 0 && isGone(errno)) return;
        if (number >= 0) {
            auto& ways = m_ways[number];
            const Way way{root, part.native()};
            if (std::find(ways.begin(), ways.end(), way) == ways.end()) ways.push_back(way);
        }
        folder /= part;
    }
}

/// Looks what stands at a root now. The way is watched first, so that nothing comes after the look unseen.
void WatchedTree::settleRoot(std::size_t root, Tells tells) {
    watchWayTo(root);
    const auto& [text, place] = m_roots[root];
    const int number = watch(place, treeEvents);
    const int error = number < 0 ? errno : 0;
    Folder* const before = m_rootFolders[root];
    if (before && before->watch == number) return;
    if (before) loseRoot(*before);
    if (number < 0) return noteUnwatched(error);

    auto& folder = m_folders[number];
    if (folder && folder->root) return;  // A mount shows one folder at two roots.
    if (folder) {
        unlink(*folder);
    } else {
        folder = std::make_unique<Folder>();
        folder->watch = number;
    }
    folder->root = root;
    folder->round = m_round;
    m_pathWatch = -1;
    m_rootFolders[root] = folder.get();
    if (tells != Tells::nothing) m_teller.happened(text);
    walk(folder.get(), text, place, tells);
}

/// Looks which folder bears the name now, whatever an event has said.
void WatchedTree::settle(Folder& above, const std::string& name) {
    const auto folder = pathOf(above, &Root::place);
    const auto text = pathOf(above, &Root::text);
    if (!folder || !text) return;
    const std::string place = joined(*folder, name);
    const int number = watch(place, treeEvents | IN_DONT_FOLLOW);
    if (number < 0) {
        const int error = errno;
        if (const auto there = above.below.find(name); there != above.below.end()) leave(*there->second);
        noteUnwatched(error);
        if (!isGone(error)) walk(nullptr, joined(*text, name), place, Tells::everything);
        return;
    }
    bool isNew = false;
    Folder* const found = placed(number, above, name, isNew);
    if (found && isNew) walk(found, joined(*text, name), place, Tells::everything);
}

void WatchedTree::loseRoot(Folder& folder) {
    m_teller.happened(m_roots[*folder.root].text);
    m_rootFolders[*folder.root] = nullptr;
    folder.root.reset();
    leave(folder);
}

WatchedTree::Folder* WatchedTree::known(int watch) const {
    const auto found = m_folders.find(watch);
    return found == m_folders.end() ? nullptr : found->second.get();
}

WatchedTree::Folder* WatchedTree::placed(int watch, Folder& above, std::string_view name, bool& isNew) {
    for (const Folder* outer = &above; outer; outer = outer->above)
        if (outer->watch == watch) return nullptr;  // A mount shows a folder inside itself.
    auto& folder = m_folders[watch];
    if (folder && folder->root) return nullptr;
    isNew = !folder || folder->above != &above || folder->name != name;
    if (isNew) {
        if (const auto there = above.below.find(name); there != above.below.end()) leave(*there->second);
        if (folder) {
            // Its going may be among what the system could not keep.
            if (const auto path = pathOf(*folder, &Root::text)) m_teller.happened(*path);
            unlink(*folder);
        } else {
            folder = std::make_unique<Folder>();
            folder->watch = watch;
        }
        folder->above = &above;
        folder->name = name;
        m_pathWatch = -1;
        above.below.emplace(name, folder.get());
    }
    folder->round = m_round;
    return folder.get();
}

/// A folder that is at its place no longer. Its watch stands for a while: with it the folder is known again elsewhere.
void WatchedTree::leave(Folder& folder) {
    unlink(folder);
    m_left.push_back({folder.watch, std::chrono::steady_clock::now()});
}

void WatchedTree::unlink(Folder& folder) {
    if (folder.above) folder.above->below.erase(folder.name);
    folder.above = nullptr;
    m_pathWatch = -1;
}

/// A folder that has left, with all that is below it.
void WatchedTree::forget(Folder& folder) {
    std::vector<Folder*> rest{&folder};
    while (!rest.empty()) {
        Folder* const next = rest.back();
        rest.pop_back();
        for (const auto& entry : next->below) rest.push_back(entry.second);
        // The system has ended the watch of a folder that it removed.
        if (m_ways.find(next->watch) == m_ways.end()) ::inotify_rm_watch(m_inotify, next->watch);
        m_folders.erase(next->watch);
    }
}

void WatchedTree::walk(Folder* top, const std::string& text, const std::string& place, Tells tells) {
    TreeWalk walk(place, {.order = TreeWalk::Order::any});
    std::vector<Level> levels{{top, tells}};
    while (walk.next()) {
        if (walk.event() != TreeWalk::Event::item) continue;
        levels.resize(static_cast<std::size_t>(walk.depth()) + 1, levels.front());
        const Level level = levels.back();
        if (isToTell(level.tells, walk)) m_teller.happened(joined(text, walk.relativePath()));
        if (walk.type() != Files::ItemType::folder) continue;
        levels.push_back(enter(level, walk));
        // There is nothing to see or to watch.
        if (!levels.back().folder && levels.back().tells == Tells::nothing) walk.skipContents();
    }
}

/// Watches the folder that a walk has come to, before the walk lists it.
WatchedTree::Level WatchedTree::enter(const Level& level, const TreeWalk& walk) {
    if (!level.folder) return level;
    const std::string place = fmt::format("/proc/self/fd/{}/{}", walk.folderHandle(), walk.name());
    const int number = watch(place, treeEvents | IN_DONT_FOLLOW);
    if (number < 0) {
        noteUnwatched(errno);
        return {nullptr, level.tells};
    }
    bool isNew = false;
    Folder* const folder = placed(number, *level.folder, walk.name(), isNew);
    // What has come from elsewhere may hold what has not changed for years.
    const bool isAllNew = isNew && level.tells == Tells::whatChanged;
    return {folder, isAllNew ? Tells::everything : level.tells};
}

bool WatchedTree::isToTell(Tells tells, TreeWalk& walk) const {
    if (tells != Tells::whatChanged) return tells == Tells::everything;
    const struct stat* const status = walk.status();
    return status && isAtOrAfter(SystemCalls::statusChangeTime(*status), m_changedSince);
}

void WatchedTree::noteUnwatched(int error) {
    if (isGone(error)) return;
    if (error == ENOSPC)
        return miss(
            "The system lets no more folders be watched (fs.inotify.max_user_watches): in some of them, what came and "
            "went again may be missing.");
    miss(fmt::format("Some folders could not be watched ({}): in them, what came and went again may be missing.",
                     systemErrorText(error)));
}

void WatchedTree::miss(const std::string& sentence) {
    if (m_missed.insert(sentence).second) m_teller.missed(sentence);
}

std::optional<std::string> WatchedTree::pathOf(const Folder& folder, std::string Root::*form) const {
    std::vector<const Folder*> trail;
    const Folder* top = &folder;
    for (; top->above; top = top->above) trail.push_back(top);
    if (!top->root) return std::nullopt;
    std::string path = m_roots[*top->root].*form;
    for (auto part = trail.rbegin(); part != trail.rend(); ++part) append(path, (*part)->name);
    return path;
}

}  // namespace tarvik
