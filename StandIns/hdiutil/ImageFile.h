#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/stat.h>

namespace tarvik::hdiutil {

/// An image that is open for reading. Belongs to one thread.
class ImageFile {
public:
    /// Takes links to what they lead to, and anything but a file for no image; never waits for a pipe.
    /// @throws Failure in the Mac's words.
    explicit ImageFile(const fs::path& path);

    /// Up to `count` bytes; fewer at the end of the file, and where it cannot be read.
    std::string bytesAt(std::uint64_t offset, std::size_t count) const;
    std::uint64_t size() const { return static_cast<std::uint64_t>(m_status.st_size); }
    const struct stat& status() const { return m_status; }
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
    FileDescriptor m_file;
    struct stat m_status {};
};

}  // namespace tarvik::hdiutil
