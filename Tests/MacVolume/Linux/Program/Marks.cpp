#include "Program/Marks.h"

#include "Support/MacAttributes.h"

#include <cerrno>

namespace tarvik::macvolume {

namespace {

using test::MacFlag::restricted;

constexpr std::uint32_t immutable = test::MacFlag::userImmutable | test::MacFlag::systemImmutable | restricted;
constexpr std::uint32_t appendOnly = test::MacFlag::userAppend | test::MacFlag::systemAppend;

bool hasOneOf(const Marks& item, std::uint32_t flags) {
    return (item.flags & flags) != 0;
}

}  // namespace

int MarkRules::ofRemoval(const Marks& item, const Marks& folder) {
    if (hasOneOf(item, immutable | appendOnly | test::MacFlag::noUnlink) || item.isPrivate) return EPERM;
    if (hasOneOf(folder, immutable | appendOnly)) return EPERM;
    return item.deniesDelete || folder.deniesDeleteInside ? EACCES : 0;
}

int MarkRules::ofAddition(const Marks& folder) {
    return hasOneOf(folder, immutable) ? EPERM : 0;
}

int MarkRules::ofChange(const Marks& item) {
    return hasOneOf(item, immutable | appendOnly) ? EPERM : 0;
}

int MarkRules::ofWriting(const Marks& item, bool onlyAppends) {
    return hasOneOf(item, immutable) || (hasOneOf(item, appendOnly) && !onlyAppends) ? EPERM : 0;
}

int MarkRules::ofChangeInside(const Marks& folder) {
    return folder.isPrivate || folder.isGuardedBundle ? EPERM : 0;
}

int MarkRules::ofReadingInside(const Marks& folder) {
    return folder.isPrivate ? EPERM : 0;
}

Marks MarkTable::of(const struct stat& item) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_marks.find({item.st_dev, item.st_ino});
    return found == m_marks.end() ? Marks() : found->second;
}

void MarkTable::set(const struct stat& item, const Marks& marks) {
    const std::lock_guard lock(m_mutex);
    if (marks == Marks())
        m_marks.erase({item.st_dev, item.st_ino});
    else
        m_marks[{item.st_dev, item.st_ino}] = marks;
}

bool MarkTable::isEmpty() const {
    const std::lock_guard lock(m_mutex);
    return m_marks.empty();
}

}  // namespace tarvik::macvolume
