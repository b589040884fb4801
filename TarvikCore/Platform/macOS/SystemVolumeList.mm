#include "Platform/Machine/AvailableCapacity.h"
#include "Platform/Machine/VolumeList.h"

#import <Foundation/Foundation.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <utility>
#include <vector>

namespace tarvik {

namespace {

constexpr std::size_t mostMounts = 512;

std::optional<std::string> text(NSDictionary<NSURLResourceKey, id>* values, NSURLResourceKey key) {
    NSString* value = values[key];
    const char* characters = value.UTF8String;  // Null also for what has no UTF-8 form.
    return characters ? std::optional<std::string>(characters) : std::nullopt;
}

std::optional<std::int64_t> bytes(NSDictionary<NSURLResourceKey, id>* values, NSURLResourceKey key) {
    NSNumber* value = values[key];
    return value ? std::optional<std::int64_t>(value.longLongValue) : std::nullopt;
}

std::optional<bool> flag(NSDictionary<NSURLResourceKey, id>* values, NSURLResourceKey key) {
    NSNumber* value = values[key];
    return value ? std::optional<bool>(value.boolValue) : std::nullopt;
}

std::optional<bool> opposite(std::optional<bool> flag) {
    return flag ? std::optional(!*flag) : std::nullopt;
}

NSArray<NSURLResourceKey>* volumeKeys() {
    return @[
        NSURLVolumeNameKey, NSURLVolumeTotalCapacityKey, NSURLVolumeAvailableCapacityForImportantUsageKey,
        NSURLVolumeAvailableCapacityKey, NSURLVolumeIsInternalKey, NSURLVolumeIsBrowsableKey, NSURLVolumeIsReadOnlyKey,
        NSURLVolumeLocalizedFormatDescriptionKey, NSURLVolumeUUIDStringKey, NSURLVolumeSupportsSymbolicLinksKey,
        NSURLVolumeSupportsAccessPermissionsKey, NSURLVolumeSupportsCaseSensitiveNamesKey, NSURLVolumeMaximumFileSizeKey
    ];
}

std::optional<std::int64_t> availableBytesOf(NSDictionary<NSURLResourceKey, id>* values) {
    return AvailableCapacity::of(bytes(values, NSURLVolumeAvailableCapacityForImportantUsageKey),
                                 bytes(values, NSURLVolumeAvailableCapacityKey));
}

/// What the system tells of the volume that is mounted there; nothing when it cannot be read.
std::optional<Volume> volumeAt(NSURL* place) {
    NSDictionary<NSURLResourceKey, id>* values = [place resourceValuesForKeys:volumeKeys() error:nil];
    if (!values) return std::nullopt;
    return Volume{.mountPath = place.fileSystemRepresentation,
                  .name = text(values, NSURLVolumeNameKey),
                  .totalBytes = bytes(values, NSURLVolumeTotalCapacityKey),
                  .availableBytes = availableBytesOf(values),
                  .isInternal = flag(values, NSURLVolumeIsInternalKey),
                  .isBrowsable = flag(values, NSURLVolumeIsBrowsableKey),
                  .isReadOnly = flag(values, NSURLVolumeIsReadOnlyKey),
                  .formatDescription = text(values, NSURLVolumeLocalizedFormatDescriptionKey),
                  .identifier = text(values, NSURLVolumeUUIDStringKey),
                  .keepsLinks = flag(values, NSURLVolumeSupportsSymbolicLinksKey),
                  .keepsPermissions = flag(values, NSURLVolumeSupportsAccessPermissionsKey),
                  .foldsNames = opposite(flag(values, NSURLVolumeSupportsCaseSensitiveNamesKey)),
                  .largestFile = bytes(values, NSURLVolumeMaximumFileSizeKey)};
}

/// The volumes as the file manager knows them. It asks network volumes itself and gives up on dead ones.
class MacVolumeList final : public VolumeList {
public:
    std::vector<Volume> mounted() const override {
        std::vector<Volume> volumes;
        @autoreleasepool {
            NSArray<NSURL*>* places = [[NSFileManager defaultManager]
                mountedVolumeURLsIncludingResourceValuesForKeys:volumeKeys()
                                                        options:NSVolumeEnumerationSkipHiddenVolumes];
            for (NSURL* place in places)
                if (auto volume = volumeAt(place)) volumes.push_back(*std::move(volume));
        }
        return volumes;
    }

    std::optional<Volume> at(const fs::path& mountPath) const override {
        const auto mounts = mountPaths();
        if (std::find(mounts.begin(), mounts.end(), mountPath) == mounts.end()) return std::nullopt;
        @autoreleasepool {
            return volumeAt([NSURL fileURLWithFileSystemRepresentation:mountPath.c_str()
                                                           isDirectory:YES
                                                         relativeToURL:nil]);
        }
    }

    std::vector<fs::path> mountPaths() const override {
        // getfsstat(2): with MNT_NOWAIT it gives what the kernel knows, and asks no file system.
        std::vector<struct statfs> mounts(mostMounts);
        const int count =
            ::getfsstat(mounts.data(), static_cast<int>(mounts.size() * sizeof(struct statfs)), MNT_NOWAIT);
        std::vector<fs::path> paths;
        for (int index = 0; index < count; ++index)
            paths.emplace_back(mounts[static_cast<std::size_t>(index)].f_mntonname);
        return paths;
    }

    std::optional<std::int64_t> availableBytes(const fs::path& path) const override {
        @autoreleasepool {
            NSURL* url = [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
            NSDictionary<NSURLResourceKey, id>* values = [url resourceValuesForKeys:@[
                NSURLVolumeAvailableCapacityForImportantUsageKey, NSURLVolumeAvailableCapacityKey
            ]
                                                                              error:nil];
            return values ? availableBytesOf(values) : std::nullopt;
        }
    }
};

}  // namespace

std::shared_ptr<const VolumeList> makeSystemVolumeList(const fs::path&) {
    return std::make_shared<MacVolumeList>();
}

}  // namespace tarvik
