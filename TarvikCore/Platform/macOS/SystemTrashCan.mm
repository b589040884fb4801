#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/TrashItem.h"

#import <Foundation/Foundation.h>
#include <cerrno>
#include <memory>
#include <string>
#include <sys/mount.h>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

/// The errno value behind a failure of the file manager, as far as it tells one.
int errorNumberOf(NSError* error) {
    for (NSError* step = error; step; step = step.userInfo[NSUnderlyingErrorKey])
        if ([step.domain isEqualToString:NSPOSIXErrorDomain]) return static_cast<int>(step.code);
    if (![error.domain isEqualToString:NSCocoaErrorDomain]) return EIO;
    switch (error.code) {
        case NSFileNoSuchFileError:
        case NSFileReadNoSuchFileError:
            return ENOENT;
        case NSFileReadNoPermissionError:
        case NSFileWriteNoPermissionError:
            return EACCES;
        case NSFileWriteOutOfSpaceError:
            return ENOSPC;
        case NSFileWriteVolumeReadOnlyError:
            return EROFS;
        case NSFeatureUnsupportedError:  // The volume has no Trash.
            return ENOTSUP;
        default:
            return EIO;
    }
}

/// The Trash as the system's file manager keeps it: the home's, or the volume's own.
class MacTrashCan final : public TrashCan {
public:
    explicit MacTrashCan(fs::path homeTrash) : m_homeTrash(std::move(homeTrash)) {}

    fs::path moveToTrash(const fs::path& item) const override {
        const fs::path place = TrashItem::place(item);
        TrashItem::refuseTrashItself(place, m_homeTrash);
        int failure = 0;
        fs::path there;
        @autoreleasepool {
            NSURL* url = [NSURL fileURLWithFileSystemRepresentation:place.c_str() isDirectory:NO relativeToURL:nil];
            NSURL* result = nil;
            NSError* error = nil;
            if (![[NSFileManager defaultManager] trashItemAtURL:url resultingItemURL:&result error:&error])
                failure = errorNumberOf(error);
            else if (result)
                there = result.fileSystemRepresentation;
        }
        if (failure != 0) throw FileError("move to the Trash", item, failure);
        return there;
    }

    std::vector<fs::path> foldersFor(const fs::path& place) const override {
        fs::path there = place.parent_path();
        while (there.has_relative_path() && !Files::exists(there)) there = there.parent_path();
        struct statfs volume {};
        if (::statfs(there.c_str(), &volume) != 0) return {m_homeTrash};
        // A volume that is not the home's has a Trash for each user.
        return {m_homeTrash, fs::path(volume.f_mntonname) / ".Trashes" / std::to_string(::getuid())};
    }

private:
    const fs::path m_homeTrash;
};

}  // namespace

std::shared_ptr<const TrashCan> makeSystemTrashCan(const fs::path& home) {
    return std::make_shared<MacTrashCan>(home / ".Trash");
}

}  // namespace tarvik
