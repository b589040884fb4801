#include "Copying/ChangeWatch.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "Platform/Files/TreeWalk.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace tarvik::ChangeWatch {

namespace {

// Kernels stamp files with the time of their last clock tick, 10 ms apart at the most.
constexpr auto clockTick = std::chrono::milliseconds(10);

// The coarsest stamps there are, those of FAT, tell every other second, and stand for the time until the next one.
constexpr time_t coarsestStep = 2;

bool isAfter(const timespec& time, const timespec& mark) {
    const bool isCoarse = time.tv_nsec == 0;
    if (isCoarse) return time.tv_sec + coarsestStep > mark.tv_sec;
    return std::pair(time.tv_sec, time.tv_nsec) > std::pair(mark.tv_sec, mark.tv_nsec);
}

/// It returns when the clocks have moved on. No flush may begin before: a page that is written to again in between
/// would bear no later time.
Mark markNow(const fs::path& root) {
    Mark result;
    result.root = std::make_shared<const FileDescriptor>(
        ::open(root.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    ::clock_gettime(CLOCK_REALTIME, &result.time);
    std::this_thread::sleep_for(clockTick);
    return result;
}

/// Whether it is another item than the one that stood there at the mark. One that could not be opened is not known.
bool isAnother(const struct stat& status, const Mark& mark) {
    struct stat before {};
    if (!mark.root || !*mark.root || ::fstat(mark.root->get(), &before) != 0) return false;
    return !Files::isSameItem(Files::infoOfStatus(before), Files::infoOfStatus(status));
}

}  // namespace

Beginning::Beginning(const fs::path& root) : m_root(root), m_mark(markNow(root)), m_flush(root) {}

Mark Beginning::mark() {
    const int error = m_flush.error();
    // What cannot be opened cannot be copied either, and the copier has better words for it.
    const bool isOutOfReach = error == EACCES || error == ENXIO;
    if (error && !isOutOfReach) throw FileError("flush", m_root, error);
    return m_mark;
}

Mark mark(const fs::path& root) {
    return Beginning(root).mark();
}

Mark markUnflushed(const fs::path& root) {
    return markNow(root);
}

bool hasChanged(const struct stat& status, const Mark& mark) {
    return isAfter(SystemCalls::statusChangeTime(status), mark.time);
}

std::optional<fs::path> changedBelow(const Host& host, const fs::path& root, const Mark& mark) {
    struct stat status {};
    if (::lstat(root.c_str(), &status) != 0) throw FileError("read", root, errno);
    if (isAnother(status, mark) || isAfter(SystemCalls::contentChangeTime(status), mark.time)) return fs::path();
    if (!S_ISDIR(status.st_mode)) return std::nullopt;
    return changedInside(host, root, mark);
}

std::optional<fs::path> changedInside(const Host&, const fs::path& root, const Mark& mark) {
    TreeWalk walk(root, {.order = TreeWalk::Order::any});
    if (walk.rootError()) throw FileError("read", root, walk.rootError());
    while (walk.next()) {
        if (walk.event() == TreeWalk::Event::unreadable)
            throw FileError("read", root / walk.relativePath(), walk.errorNumber());
        const struct stat* entry = walk.status();
        if (!entry && errno != ENOENT) throw FileError("read", root / walk.relativePath(), errno);
        const bool hasGone = !entry;
        if (hasGone || hasChanged(*entry, mark)) return fs::path(walk.relativePath());
    }
    return std::nullopt;
}

}  // namespace tarvik::ChangeWatch
