#include "Program/Volume.h"

#include "Platform/Text/Text.h"
#include "Program/Refusal.h"

#include <unistd.h>

namespace tarvik::macvolume {

namespace {

/// Each component of a path from the kernel, from the top.
template <typename Visit>
void forEachComponent(std::string_view path, const Visit& visit) {
    while (!path.empty()) {
        const auto slash = path.find('/');
        const std::string_view component = path.substr(0, slash);
        if (!component.empty()) visit(component);
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
    }
}

}  // namespace

void Volume::set(Habit habit, bool isOn) {
    if (habit == Habit::guardsSignedBundles) guardSignedBundles(isOn);
    m_habits.set(habit, isOn);
}

/// A copy that is made later is its maker's own.
void Volume::guardSignedBundles(bool areGuarded) {
    for (const std::string& folder : m_backing.foldersBelow(".")) {
        if (!m_backing.status(folder + "/Contents/_CodeSignature")) continue;
        Marks marks = marksAt(folder);
        marks.isGuardedBundle = areGuarded;
        mark(folder, marks);
    }
}

std::string Volume::found(std::string_view path) const {
    if (path == "/") return ".";
    std::string asWritten(path.substr(1));
    if (m_backing.status(asWritten)) return asWritten;
    if (!has(Habit::foldsNames)) refuse(ENOENT);
    std::string place = ".";
    forEachComponent(path, [&](std::string_view component) {
        std::string next = Backing::joined(place, component);
        if (!m_backing.status(next)) {
            const auto same = m_backing.sameName(place, component);
            if (!same) refuse(ENOENT);
            next = Backing::joined(place, *same);
        }
        place = std::move(next);
    });
    return place;
}

std::string Volume::placeFor(std::string_view path) const {
    const std::string written = placeAsWritten(path);
    if (m_backing.status(written) || !has(Habit::foldsNames)) return written;
    const std::string folder = Backing::folderOf(written);
    const auto same = m_backing.sameName(folder, Backing::nameOf(written));
    return same ? Backing::joined(folder, *same) : written;
}

std::string Volume::placeAsWritten(std::string_view path) const {
    const auto slash = path.rfind('/');
    const std::string folder = found(slash == 0 ? "/" : path.substr(0, slash));
    const std::string_view name = path.substr(slash + 1);
    // Both of a Mac's file systems that fold names keep Unicode text alone.
    if (has(Habit::foldsNames) && !Text::isValidUtf8(name)) refuse(EILSEQ);
    return Backing::joined(folder, name);
}

Marks Volume::marksAt(const std::string& place) const {
    if (m_marks.isEmpty()) return {};
    const auto status = m_backing.status(place);
    return status ? m_marks.of(*status) : Marks();
}

void Volume::mark(const std::string& place, const Marks& marks) {
    const auto status = m_backing.status(place);
    if (!status) refuse(ENOENT);
    m_marks.set(*status, marks);
}

template <typename Rule>
void Volume::requireOfAllAbove(std::string place, const Rule& rule) const {
    if (m_marks.isEmpty()) return;
    while (true) {
        require(rule(marksAt(place)));
        if (place == ".") return;
        place = Backing::folderOf(place);
    }
}

void Volume::requireChangeInside(const std::string& folder) const {
    requireOfAllAbove(folder, MarkRules::ofChangeInside);
}

void Volume::requireReadable(const std::string& place) const {
    requireOfAllAbove(place, MarkRules::ofReadingInside);
}

void Volume::requireAddition(const std::string& place) const {
    const std::string folder = Backing::folderOf(place);
    requireChangeInside(folder);
    require(MarkRules::ofAddition(marksAt(folder)));
}

void Volume::requireRemoval(const std::string& place) const {
    const std::string folder = Backing::folderOf(place);
    requireChangeInside(folder);
    require(MarkRules::ofRemoval(marksAt(place), marksAt(folder)));
}

void Volume::requireChange(const std::string& place) const {
    requireChangeInside(Backing::folderOf(place));
    require(MarkRules::ofChange(marksAt(place)));
}

void Volume::requireWriting(const std::string& place, bool onlyAppends) const {
    requireChangeInside(Backing::folderOf(place));
    require(MarkRules::ofWriting(marksAt(place), onlyAppends));
}

struct stat Volume::shown(struct stat status) const {
    if (!has(Habit::isExFat)) return status;
    // Everything belongs to whoever has mounted it, and all may do everything.
    status.st_mode |= S_IRWXU | S_IRWXG | S_IRWXO;
    status.st_mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID | S_ISVTX);
    status.st_uid = ::geteuid();
    status.st_gid = ::getegid();
    for (timespec* time : {&status.st_atim, &status.st_mtim}) {
        time->tv_sec -= time->tv_sec % 2;
        time->tv_nsec = 0;
    }
    status.st_ctim = status.st_mtim;  // It has no place for that one.
    return status;
}

std::string_view Volume::format() const {
    if (has(Habit::isExFat)) return "exFAT";
    return has(Habit::exchangesNoNames) ? "HFS+" : "APFS";
}

struct statvfs Volume::capacity() const {
    struct statvfs status {};
    requireCall(::fstatvfs(m_backing.handle(), &status));
    if (has(Habit::hasNoRoom)) status.f_bavail = 0;
    return status;
}

std::uint64_t Volume::importantCapacity() const {
    if (has(Habit::tellsOneCapacity)) return 0;
    const auto status = capacity();
    return static_cast<std::uint64_t>(status.f_bavail) * status.f_frsize;
}

}  // namespace tarvik::macvolume
