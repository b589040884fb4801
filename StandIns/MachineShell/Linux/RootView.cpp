#include "MachineShell/Linux/RootView.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace tarvik::MachineShell::RootView {

namespace {

enum class Use { readOnly, readWrite, device };

/// A part of the old root that is held while the new one is made: the new one covers it.
struct Piece {
    fs::path place;
    FileDescriptor tree;
    bool isFolder = true;
};

void must(int result, const char* verb, const fs::path& path) {
    if (result != 0) throw FileError(verb, path, errno);
}

Piece pieceOf(const fs::path& source, const fs::path& place, Use use) {
    Piece piece{place,
                FileDescriptor(::open_tree(AT_FDCWD, source.c_str(),
                                           OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_RECURSIVE | AT_SYMLINK_NOFOLLOW)),
                Files::isFolder(source)};
    if (!piece.tree) throw FileError("hold", source, errno);
    struct mount_attr attributes {};
    attributes.attr_set = MOUNT_ATTR_NOSUID;
    if (use != Use::device) attributes.attr_set |= MOUNT_ATTR_NODEV;
    if (use == Use::readOnly) attributes.attr_set |= MOUNT_ATTR_RDONLY;
    must(::mount_setattr(piece.tree.get(), "", AT_EMPTY_PATH | AT_RECURSIVE, &attributes, sizeof attributes), "hold",
         source);
    return piece;
}

bool isOneOf(const std::string& name, std::initializer_list<const char*> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The first step of an absolute path.
std::string firstStep(const fs::path& path) {
    const fs::path relative = path.relative_path();
    return relative.empty() ? std::string() : relative.begin()->native();
}

bool isOfSystem(const std::string& name) {
    return name.starts_with("lib") || isOneOf(name, {"bin", "sbin", "usr", "proc", "dev", "tmp", ".system"});
}

struct NewRoot {
    std::vector<Piece> pieces;
    /// Links directly in the root: place and text.
    std::vector<std::pair<fs::path, fs::path>> links;

    void addSystem() {
        for (const std::string& name : Files::names("/")) {
            if (!name.starts_with("lib") && !isOneOf(name, {"bin", "sbin", "usr"})) continue;
            const fs::path item = "/" / fs::path(name);
            if (const auto text = Files::linkText(item))
                links.emplace_back(name, *text);
            else if (Files::isFolder(item))
                pieces.push_back(pieceOf(item, name, Use::readOnly));
        }
        // Many programs are links to links in /etc, which is the machine's.
        for (const std::string& name : Files::names("/usr/bin")) {
            const fs::path item = fs::path("/usr/bin") / name;
            const auto text = Files::linkText(item);
            if (!text || !text->native().starts_with("/etc/")) continue;
            if (const auto program = Files::resolved(item))
                links.emplace_back(fs::path(".system/programs") / name, *program);
        }
        for (const char* name : {"null", "zero", "full", "random", "urandom"})
            pieces.push_back(pieceOf(fs::path("/dev") / name, fs::path("dev") / name, Use::device));
        links.emplace_back("dev/fd", "/proc/self/fd");
        links.emplace_back("dev/stdin", "/proc/self/fd/0");
        links.emplace_back("dev/stdout", "/proc/self/fd/1");
        links.emplace_back("dev/stderr", "/proc/self/fd/2");
    }

    void addMachine(const fs::path& root) {
        const std::string above = firstStep(root);
        for (const std::string& name : Files::names(root)) {
            const fs::path item = root / name;
            if (isOfSystem(name) || name == above) continue;
            if (const auto text = Files::linkText(item))
                links.emplace_back(name, *text);
            else if (Files::isFolder(item))
                pieces.push_back(pieceOf(item, name, name == "System" ? Use::readOnly : Use::readWrite));
        }
        for (const char* name : {"etc", "var"})
            if (!Files::itemExists(root / name) && name != above) links.emplace_back(name, fs::path("private") / name);
        if (Files::isFolder("/usr/local") && Files::isFolder(root / "usr/local"))
            pieces.push_back(pieceOf(root / "usr/local", "usr/local", Use::readWrite));
        pieces.push_back(pieceOf(root, root.relative_path(), Use::readWrite));
    }

    /// At its own path, where that is one that this root makes itself.
    void addShown(const fs::path& root, const fs::path& item) {
        const std::string first = firstStep(item);
        const bool isTaken = std::any_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
            return Files::isAtOrBelow(item, "/" / piece.place) || Files::isAtOrBelow("/" / piece.place, item);
        });
        const bool isLink =
            std::any_of(links.begin(), links.end(), [&](const auto& link) { return link.first == first; });
        if (first.empty() || isTaken || isLink || Files::isAtOrBelow(item, root)) return;
        pieces.push_back(pieceOf(item, item.relative_path(), Use::readOnly));
    }
};

/// The folders above `place`, below the working directory, which is the new root.
void makeFolders(const fs::path& place) {
    fs::path folder;
    for (const fs::path& step : place) {
        folder /= step;
        if (::mkdir(folder.c_str(), 0755) != 0 && errno != EEXIST) throw FileError("create the folder", folder, errno);
    }
}

void put(const Piece& piece) {
    makeFolders(piece.isFolder ? piece.place : piece.place.parent_path());
    if (!piece.isFolder) {
        const FileDescriptor file(::open(piece.place.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        if (!file) throw FileError("create", piece.place, errno);
    }
    must(::move_mount(piece.tree.get(), "", AT_FDCWD, piece.place.c_str(), MOVE_MOUNT_F_EMPTY_PATH), "show",
         piece.place);
}

void mountOwn(const char* type, const fs::path& place, unsigned long flags, const char* data) {
    makeFolders(place);
    must(::mount(type, place.c_str(), type, flags, data), "mount", place);
}

}  // namespace

const std::vector<fs::path>& standardFolders() {
    static const std::vector<fs::path> folders{"Applications", "Library",     "Users",       "Volumes",
                                               "private",      "private/etc", "private/tmp", "private/var",
                                               "opt",          "usr",         "usr/local"};
    return folders;
}

void enter(const fs::path& root, const fs::path& standIns, const std::vector<fs::path>& shown) {
    must(::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "hold", "/");
    NewRoot view;
    view.addSystem();
    view.addMachine(root);
    view.pieces.push_back(pieceOf(standIns, fs::path(standInsPlace).relative_path(), Use::readOnly));
    for (const fs::path& item : shown) view.addShown(root, item);

    // Any folder will do to make the new root on: all that is needed from below it is held.
    constexpr const char* base = "/usr";
    must(::mount("tmpfs", base, "tmpfs", MS_NOSUID | MS_NODEV, "mode=755,size=16m"), "mount", base);
    must(::chdir(base), "enter", base);
    mountOwn("tmpfs", "tmp", MS_NOSUID | MS_NODEV, "mode=1777,size=512m");
    // What lies above others comes first, so that it does not cover them.
    std::stable_sort(view.pieces.begin(), view.pieces.end(), [](const Piece& one, const Piece& other) {
        return std::distance(one.place.begin(), one.place.end()) <
               std::distance(other.place.begin(), other.place.end());
    });
    for (const Piece& piece : view.pieces) put(piece);
    makeFolders(fs::path(programsPlace).relative_path());
    for (const auto& [place, text] : view.links) {
        makeFolders(place.parent_path());
        must(::symlink(text.c_str(), place.c_str()), "create the link", place);
    }
    must(static_cast<int>(::syscall(SYS_pivot_root, ".", ".")), "change the root to", base);
    // Only the first is seen by now; the old root lies over it.
    makeFolders("proc");
    // Where the system grants no own table of processes, programs go without.
    ::mount("proc", "proc", "proc", MS_RDONLY | MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr);
    must(::umount2(".", MNT_DETACH), "leave", "/");
    must(::chdir("/"), "enter", "/");
    must(::mount(nullptr, "/", nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr), "close",
         "/");
}

}  // namespace tarvik::MachineShell::RootView
