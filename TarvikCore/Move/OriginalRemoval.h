#pragma once

#include "Copying/ChangeWatch.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/Host.h"

/// Takes an original away whose copy has been proved. This is where data can be lost, so it is done in two steps: the
/// original first gets a hidden name beside its place, where no program finds it by its path any more; only when
/// nothing in it has changed since the copy began is it removed.
///
/// All of it blocks; any thread. `start` was marked before the copy began. `remove` and `replaceByLink` throw
/// - MoverError verifyFailed when the original was changed meanwhile: it stands in its place, whole;
/// - FileError when it could not be removed: what is left of it stands in its place. When that is not all of it, the
///   FileError is a Files::IncompleteRemoval;
/// - another Failure, which names the hidden place, when it could not even be put back.
namespace tarvik::OriginalRemoval {

/// Whether it has been changed, before a copy of it is put where programs write to it. @throws as above.
void requireUnchanged(const Host& host, const fs::path& original, const ChangeWatch::Mark& start);

/// Leaves nothing in the original's place.
void remove(const Host& host, const fs::path& original, const ChangeWatch::Mark& start);

/// The link that is to take an original's place. It waits under a hidden name beside it; while it stands there, it also
/// tells that original and target are both whole: see `Leftovers::clearUnfinished`. What is done with a copy whose
/// original stays is done before this object ends.
class LinkInWaiting {
public:
    /// Looks for what would stop the removal, and makes the link. The original is marked as in use from then on.
    /// @throws FileError when it could not be removed; MoverError symlinkFailed when no link can be made. Nothing was
    /// touched then.
    LinkInWaiting(const fs::path& original, const fs::path& target);
    /// Removes the link where it did not come to its place.
    ~LinkInWaiting();
    LinkInWaiting(const LinkInWaiting&) = delete;
    LinkInWaiting& operator=(const LinkInWaiting&) = delete;

    const fs::path& original() const { return m_original; }
    const fs::path& place() const { return m_place; }

private:
    fs::path m_original;
    fs::path m_target;
    fs::path m_place;
    FileDescriptor m_held;
};

/// Leaves the link in the original's place. The two change places in one step where the file system can do that, so
/// that whoever looks finds one of them. @throws as above.
void replaceByLink(const Host& host, const LinkInWaiting& link, const ChangeWatch::Mark& start);

}  // namespace tarvik::OriginalRemoval
