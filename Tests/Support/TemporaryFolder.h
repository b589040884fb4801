#pragma once

#include "Platform/Basics/Path.h"

namespace tarvik::test {

/// A new, empty folder, removed with all that is in it at the end of the object's life. Its path has no links in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    /// Made in `parent`, for a test that needs a certain file system.
    explicit TemporaryFolder(const fs::path& parent);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const fs::path& path() const { return m_path; }
    fs::path operator/(const fs::path& name) const { return m_path / name; }

private:
    fs::path m_path;
};

}  // namespace tarvik::test
