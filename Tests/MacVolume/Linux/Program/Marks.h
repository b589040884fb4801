#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <utility>

namespace tarvik::macvolume {

/// What guards an item besides its permissions, which Linux has no place for.
struct Marks {
    /// As st_flags in <sys/stat.h> of a Mac.
    std::uint32_t flags = 0;
    /// An entry "everyone deny delete" in its access control list, and "everyone deny delete_child" for a folder.
    bool deniesDelete = false;
    bool deniesDeleteInside = false;
    /// A folder that privacy keeps from programs.
    bool isPrivate = false;
    /// A folder whose listing ends in an error of the disk, after half of its names.
    bool breaksListing = false;
    /// A bundle that someone else has signed, which only its maker and the Finder may change.
    bool isGuardedBundle = false;

    bool operator==(const Marks&) const = default;
};

/// What marks forbid, to the superuser too: 0, or the errno value of trying. Pure.
///
/// chflags(2): UF_IMMUTABLE and SF_IMMUTABLE let nobody change the item, nor add, remove or rename what is in a folder;
/// UF_APPEND and SF_APPEND allow to append only, which for a folder is to add. <sys/stat.h>: SF_RESTRICTED wants an
/// entitlement for each change; SF_NOUNLINK guards the item from being removed and renamed, and nothing in it.
/// chmod(1): the rights "delete" and "delete_child", whose denial is EACCES.
namespace MarkRules {

int ofRemoval(const Marks& item, const Marks& folder);
int ofAddition(const Marks& folder);
/// Of permissions, owner, times, extended attributes, and of further names for it.
int ofChange(const Marks& item);
int ofWriting(const Marks& item, bool onlyAppends);
/// Of whatever an item inside of this folder, however deep, may meet by that.
int ofChangeInside(const Marks& folder);
int ofReadingInside(const Marks& folder);

}  // namespace MarkRules

/// The marks of items, by what tells an item from others under whatever name. Any thread.
class MarkTable {
public:
    Marks of(const struct stat& item) const;
    void set(const struct stat& item, const Marks& marks);
    void forget(const struct stat& item) { set(item, {}); }
    bool isEmpty() const;

private:
    mutable std::mutex m_mutex;
    std::map<std::pair<dev_t, ino_t>, Marks> m_marks;
};

}  // namespace tarvik::macvolume
