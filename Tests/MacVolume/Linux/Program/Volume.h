#pragma once

#include "Program/Backing.h"
#include "Program/Habits.h"
#include "Program/Journal.h"
#include "Program/Marks.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace tarvik::macvolume {

/// The volume: its folder, its habits, the marks of its items. Paths are the ones that the kernel gives, "/" for the
/// root. What cannot be is refused by an exception. Any thread.
class Volume {
public:
    explicit Volume(FileDescriptor folder) : m_backing(std::move(folder)) {}

    const Backing& backing() const { return m_backing; }
    const Habits& habits() const { return m_habits; }
    bool has(Habit habit) const { return m_habits.has(habit); }
    void set(Habit habit, bool isOn);

    /// Where the item of this path stands. ENOENT where there is none.
    std::string found(std::string_view path) const;
    /// Where an item of this path stands or, where there is none, would come to stand. ENOENT without a folder for it.
    std::string placeFor(std::string_view path) const;
    /// Where it would come to stand under the name as it is written, whatever item has that name by now.
    std::string placeAsWritten(std::string_view path) const;

    /// What is done on it is noted there by whoever does it.
    Journal& journal() { return m_journal; }

    Marks marksAt(const std::string& place) const;
    void mark(const std::string& place, const Marks& marks);
    /// What stood there has been removed; its number may be given to another item.
    void forget(const struct stat& item) { m_marks.forget(item); }

    // What the marks and the habits forbid. `place` is the item's.
    void requireReadable(const std::string& place) const;
    void requireAddition(const std::string& place) const;
    void requireRemoval(const std::string& place) const;
    void requireChange(const std::string& place) const;
    void requireWriting(const std::string& place, bool onlyAppends) const;

    /// What a status call tells.
    struct stat shown(struct stat status) const;

    std::string_view format() const;
    /// As statvfs(3) tells it: the plain capacity is in it.
    struct statvfs capacity() const;
    /// In bytes: what a Mac would make room for. Here, where nothing can be cleared away, the plain one or nothing.
    std::uint64_t importantCapacity() const;

private:
    void requireChangeInside(const std::string& folder) const;
    template <typename Rule>
    void requireOfAllAbove(std::string place, const Rule& rule) const;
    void guardSignedBundles(bool areGuarded);

    Backing m_backing;
    Habits m_habits;
    MarkTable m_marks;
    Journal m_journal;
};

}  // namespace tarvik::macvolume
