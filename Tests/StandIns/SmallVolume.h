#pragma once

#include "Platform/Path.h"
#include "Support/TemporaryFolder.h"

#include <string>

namespace tarvik::test {

/// A file system of its own for one test, in memory, which nobody else on the machine sees. Gone at the end of its
/// life.
class SmallVolume {
public:
    /// Whether this user may mount at all; a test that needs it skips otherwise.
    static bool isPossible();

    /// `kind` is the system's name: "tmpfs", or "ramfs", which knows no extended attributes. `options` is as for mount.
    explicit SmallVolume(const std::string& kind = "tmpfs", const std::string& options = "");
    ~SmallVolume();
    SmallVolume(const SmallVolume&) = delete;
    SmallVolume& operator=(const SmallVolume&) = delete;

    bool isMounted() const { return m_isMounted; }
    void makeReadOnly();
    fs::path operator/(const fs::path& name) const { return m_folder / name; }

private:
    TemporaryFolder m_folder;
    std::string m_kind;
    bool m_isMounted = false;
};

}  // namespace tarvik::test
