#pragma once

#include "Platform/Basics/Path.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::test {

/// What the sizes of volumes are counted in, in bytes.
inline constexpr std::int64_t megabyte = 1'000'000;

/// A real, mounted file system of its own, for what only a second volume can show: EXDEV, a full drive, a drive that
/// was unplugged. It is unmounted, and its mount point removed, at the end of the object's life. Mounts are seen by
/// this process and its children alone and end with it, even when a test crashes.
class RealVolume {
public:
    enum class Kind { ext4, memory };

    /// Formats and mounts an ext4 image of `sizeBytes` (1 MB and up) on a new folder in `parent`. The image has no name
    /// in `parent`, but takes room on its volume.
    static RealVolume ext4(const fs::path& parent, std::int64_t sizeBytes, std::string_view label = {});
    /// Mounts an empty memory file system of `sizeBytes` on a new folder in `parent`.
    static RealVolume memory(const fs::path& parent, std::int64_t sizeBytes);
    /// Mounts a file system that needs no device, by the system's own words for its kind and its options. Nothing where
    /// the system knows no such one.
    static std::optional<RealVolume> ofKind(const fs::path& parent, std::string_view kind,
                                            std::string_view options = {});
    /// Shows `folder` a second time, on a new folder in `parent`. Nothing where the system knows no such thing.
    static std::optional<RealVolume> viewOf(const fs::path& folder, const fs::path& parent);

    ~RealVolume();
    RealVolume(RealVolume&& other) noexcept;
    RealVolume& operator=(RealVolume&&) = delete;

    /// The mount point, without links.
    const fs::path& path() const { return m_path; }
    fs::path operator/(const fs::path& name) const { return m_path / name; }
    /// Makes the whole file system read-only. Fails while a file on it is open for writing.
    void remountReadOnly();
    /// Ejects it, as a user does. @returns false when the system does not allow it, as long as something on it is open.
    bool eject();
    /// Unplugs it: the mount point goes, files on it that are open stay usable until they are closed.
    void detach();

    /// Shell lines that do the same to the volume at `place`, for what a tool does that is a script. The mount point
    /// stays, and a new, empty volume of `sizeBytes` can be plugged in there.
    static std::string makingReadOnly(const fs::path& place);
    static std::string unplugging(const fs::path& place);
    static std::string plugging(const fs::path& place, std::int64_t sizeBytes);

    /// Why volumes of a kind cannot be made here; nothing when they can.
    static std::optional<std::string> unavailableReason(Kind kind = Kind::ext4);

    /// Gives this process a place of its own for mounts. Call once, before anything else starts; what fails here is
    /// told by `unavailableReason`.
    static void prepareProcess();

private:
    explicit RealVolume(fs::path path) : m_path(std::move(path)) {}

    fs::path m_path;
};

/// Whether tests must run: skipping one for want of something is a failure then (TARVIK_NO_SKIPS is set).
bool skipsAreForbidden();

}  // namespace tarvik::test

/// Ends a test that cannot run here, with the reason: skipped, or failed where skips are forbidden.
#define TARVIK_SKIP_BECAUSE(reason)                                  \
    do {                                                             \
        if (::tarvik::test::skipsAreForbidden()) FAIL() << (reason); \
        GTEST_SKIP() << (reason);                                    \
    } while (false)

#define TARVIK_NEEDS_VOLUMES_OF_KIND(kind)                                                               \
    do {                                                                                                 \
        if (const auto reason = ::tarvik::test::RealVolume::unavailableReason(kind); reason.has_value()) \
            TARVIK_SKIP_BECAUSE(*reason);                                                                \
    } while (false)

/// First line of a test that makes volumes of any kind, and of one that makes memory volumes only.
#define TARVIK_NEEDS_REAL_VOLUMES() TARVIK_NEEDS_VOLUMES_OF_KIND(::tarvik::test::RealVolume::Kind::ext4)
#define TARVIK_NEEDS_MEMORY_VOLUMES() TARVIK_NEEDS_VOLUMES_OF_KIND(::tarvik::test::RealVolume::Kind::memory)
