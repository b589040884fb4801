#include "Packages/BoundedTree.h"

#include "Packages/PackageFailure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/FileError.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <deque>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace tarvik::packages {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW;
constexpr mode_t ownRights = 0777;
constexpr int mostLinks = 32;

std::optional<std::string> linkText(int folder, const char* name) {
    std::array<char, PATH_MAX> text{};
    const ssize_t length = ::readlinkat(folder, name, text.data(), text.size());
    if (length < 0 || static_cast<std::size_t>(length) == text.size()) return std::nullopt;
    return std::string(text.data(), static_cast<std::size_t>(length));
}

std::vector<std::string> steps(std::string_view path) {
    std::vector<std::string> result;
    while (!path.empty()) {
        const std::string_view step = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), step.size() + 1));
        if (!step.empty() && step != ".") result.emplace_back(step);
    }
    return result;
}

void writeAll(int file, std::string_view bytes, const fs::path& path) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw FileError("write", path, errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool isAdministrator() {
    return ::geteuid() == 0;
}

struct timespec timeOf(const std::optional<std::chrono::system_clock::time_point>& time) {
    struct timespec result {};
    if (!time) {
        result.tv_nsec = UTIME_OMIT;
        return result;
    }
    const auto seconds = std::chrono::floor<std::chrono::seconds>(*time);
    result.tv_sec = static_cast<time_t>(seconds.time_since_epoch().count());
    result.tv_nsec = static_cast<long>(std::chrono::duration_cast<std::chrono::nanoseconds>(*time - seconds).count());
    return result;
}

/// Of an open file or folder. Owners go first: to give a file away takes rights from it.
void giveStatus(int item, const ItemStatus& status, const fs::path& path) {
    if (isAdministrator() && ::fchown(item, status.user, status.group) != 0)
        throw FileError("give to its owner", path, errno);
    if (::fchmod(item, status.mode & ownRights) != 0) throw FileError("set the permissions of", path, errno);
    const std::array<struct timespec, 2> times{timeOf(std::nullopt), timeOf(status.modified)};
    if (status.modified && ::futimens(item, times.data()) != 0) throw FileError("set the time of", path, errno);
}

}  // namespace

BoundedTree::BoundedTree(const fs::path& root, Links links)
    : m_root(root),
      m_rootText(root.native()),
      m_links(links),
      m_rootHandle(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!m_rootHandle) throw FileError("open the folder", root, errno);
}

fs::path BoundedTree::shown(const SafeName::Components& path) const {
    return m_root / SafeName::joined(path);
}

/// Where the text of a link in the folder `above` leads, from the root on; ".." stays in it.
SafeName::Components BoundedTree::targetOfLink(const SafeName::Components& above, const std::string& text) const {
    if (!text.starts_with('/')) {
        auto target = above;
        for (std::string& step : steps(text)) target.push_back(std::move(step));
        return target;
    }
    const bool isBelowRoot =
        text.starts_with(m_rootText) && (text.size() == m_rootText.size() || text[m_rootText.size()] == '/');
    return steps(isBelowRoot ? std::string_view(text).substr(m_rootText.size()) : std::string_view(text));
}

FileDescriptor BoundedTree::opened(const SafeName::Components& path, Missing missing) const {
    struct Step {
        std::string name;
        /// What a link leads to must be there; what the path itself names may be new.
        bool isOfLink;
    };
    const auto unsafe = [&](const std::string& reason) { failUnsafe(shown(path).native() + " " + reason); };
    std::deque<Step> ahead;
    for (const std::string& name : path) ahead.push_back({name, false});
    SafeName::Components behind;
    FileDescriptor handle(::openat(m_rootHandle.get(), ".", folderFlags));
    int links = 0;
    const auto startAgain = [&](const SafeName::Components& from) {
        for (auto name = from.rbegin(); name != from.rend(); ++name) ahead.push_front({*name, true});
        behind.clear();
        handle = FileDescriptor(::openat(m_rootHandle.get(), ".", folderFlags));
    };
    while (handle && !ahead.empty()) {
        const Step step = std::move(ahead.front());
        ahead.pop_front();
        if (step.name == "..") {
            // Only a link's text holds it. What is behind has no links in it, so that this is the folder above.
            if (behind.empty()) unsafe("leads out of its machine.");
            behind.pop_back();
            startAgain(SafeName::Components(behind));
            continue;
        }
        const char* name = step.name.c_str();
        FileDescriptor next(::openat(handle.get(), name, folderFlags));
        if (!next && errno == ENOENT && missing == Missing::made && !step.isOfLink) {
            if (::mkdirat(handle.get(), name, 0755) != 0 && errno != EEXIST)
                throw FileError("create the folder", shown(path), errno);
            next = FileDescriptor(::openat(handle.get(), name, folderFlags));
        }
        if (next) {
            handle = std::move(next);
            behind.push_back(step.name);
            continue;
        }
        const int error = errno;
        const auto text = error == ENOENT ? std::nullopt : linkText(handle.get(), name);
        if (!text && error == ENOENT && step.isOfLink) unsafe("leads through a link to nothing.");
        if (!text) throw FileError("open the folder", shown(path), error);
        if (m_links == Links::refused) unsafe("would be written through a link.");
        if (++links > mostLinks) unsafe("leads through too many links.");
        startAgain(targetOfLink(behind, *text));
    }
    if (!handle) throw FileError("open the folder", shown(path), errno);
    return handle;
}

const FileDescriptor& BoundedTree::folder(const SafeName::Components& path, Missing missing) {
    if (!m_lastFolder || m_lastPath != path) {
        m_lastFolder.close();
        m_lastFolder = opened(path, missing);
        m_lastPath = path;
    }
    return m_lastFolder;
}

const FileDescriptor& BoundedTree::folderOf(const SafeName::Components& path) {
    if (path.empty()) failUnsafe("An item would take the place of the folder that all is written to.");
    return folder(SafeName::Components(path.begin(), path.end() - 1), Missing::made);
}

/// Makes an item under a hidden name and gives it its own name then, so that what stood there is whole until then.
template <typename Make>
void BoundedTree::replace(const SafeName::Components& path, const Make& make) {
    const int parent = folderOf(path).get();
    const std::string hidden = ".tarvik-" + newIdentifier();
    try {
        make(parent, hidden.c_str());
        if (::renameat(parent, hidden.c_str(), parent, path.back().c_str()) != 0)
            throw FileError("write", shown(path), errno);
        // Two names of one file are left as they are by a rename.
        ::unlinkat(parent, hidden.c_str(), 0);
    } catch (...) {
        ::unlinkat(parent, hidden.c_str(), 0);
        throw;
    }
}

void BoundedTree::makeFolder(const SafeName::Components& path, const ItemStatus& status) {
    if (path.empty()) return;
    const int parent = folderOf(path).get();
    if (::mkdirat(parent, path.back().c_str(), 0700) == 0) {
        m_made.emplace_back(path, status);
        return;
    }
    if (errno != EEXIST) throw FileError("create the folder", shown(path), errno);
    opened(path, Missing::failure);
}

void BoundedTree::makeFile(const SafeName::Components& path, const ItemStatus& status, const ByteSource& bytes) {
    replace(path, [&](int parent, const char* name) {
        const FileDescriptor file(
            ::openat(parent, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (!file) throw FileError("create", shown(path), errno);
        for (std::string_view block = bytes(); !block.empty(); block = bytes())
            writeAll(file.get(), block, shown(path));
        giveStatus(file.get(), status, shown(path));
    });
}

void BoundedTree::makeLink(const SafeName::Components& path, const ItemStatus& status, const std::string& target) {
    replace(path, [&](int parent, const char* name) {
        if (::symlinkat(target.c_str(), parent, name) != 0) throw FileError("create the link", shown(path), errno);
        if (isAdministrator() && ::fchownat(parent, name, status.user, status.group, AT_SYMLINK_NOFOLLOW) != 0)
            throw FileError("give to its owner", shown(path), errno);
    });
}

void BoundedTree::makeHardLink(const SafeName::Components& path, const SafeName::Components& file) {
    if (file.empty() || path == file) failUnsafe(shown(path).native() + " is one with itself.");
    const FileDescriptor source = opened({file.begin(), file.end() - 1}, Missing::failure);
    struct stat status {};
    if (::fstatat(source.get(), file.back().c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        throw FileError("read", shown(file), errno);
    if (!S_ISREG(status.st_mode)) failUnsafe(shown(path).native() + " would be one with something that is no file.");
    replace(path, [&](int parent, const char* name) {
        if (::linkat(source.get(), file.back().c_str(), parent, name, 0) != 0)
            throw FileError("create the link", shown(path), errno);
    });
}

void BoundedTree::finish() {
    // What is inside comes first: a folder that is closed cannot be entered any more.
    for (auto made = m_made.rbegin(); made != m_made.rend(); ++made)
        giveStatus(opened(made->first, Missing::failure).get(), made->second, shown(made->first));
    m_made.clear();
    m_lastFolder.close();
}

bool BoundedTree::exists(const SafeName::Components& path) {
    if (path.empty()) return true;
    struct stat status {};
    try {
        return ::fstatat(opened({path.begin(), path.end() - 1}, Missing::failure).get(), path.back().c_str(), &status,
                         AT_SYMLINK_NOFOLLOW) == 0;
    } catch (const Failure&) {
        return false;
    }
}

std::uint64_t BoundedTree::availableSpace(const SafeName::Components& path) {
    // Of the deepest folder that is there.
    for (auto part = path;; part.pop_back()) {
        try {
            struct statvfs status {};
            const FileDescriptor place = opened(part, Missing::failure);
            if (::fstatvfs(place.get(), &status) != 0) throw FileError("ask for the space of", shown(part), errno);
            return static_cast<std::uint64_t>(status.f_bavail) * status.f_frsize;
        } catch (const FileError& failure) {
            if (part.empty() || failure.code() != ENOENT) throw;
        }
    }
}

}  // namespace tarvik::packages
