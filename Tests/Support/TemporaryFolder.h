#pragma once

#include "Platform/Basics/Path.h"

#include <gtest/gtest.h>

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

    /// Whether files here may bear any bytes as their names. Not on a Mac, whose usual file system takes only UTF-8.
    bool takesNamesOfAnyBytes() const;

private:
    fs::path m_path;
};

}  // namespace tarvik::test

/// First line of a test that makes files whose names are no text.
#define TARVIK_NEEDS_NAMES_OF_ANY_BYTES()                                         \
    do {                                                                          \
        if (!::tarvik::test::TemporaryFolder().takesNamesOfAnyBytes())            \
            GTEST_SKIP() << "Names are text in the file system of this machine."; \
    } while (false)
