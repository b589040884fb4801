#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik {

/// The bytes of an archive file, read through one window: headers that lie close together cost few calls. Belongs to
/// one thread.
class ZipBytes {
public:
    /// More than any header of an archive takes.
    static constexpr std::size_t windowSize = std::size_t{1} << 20;

    /// Nothing when it is no ordinary file, or cannot be read. Never waits for a pipe or a device.
    static std::optional<ZipBytes> open(const fs::path& file);

    std::uint64_t size() const { return m_size; }
    /// The `length` bytes from `offset`, or as many of them as are there; valid until the next call. `length` is at
    /// most the window's.
    std::string_view at(std::uint64_t offset, std::size_t length);

private:
    ZipBytes(FileDescriptor file, std::uint64_t size) : m_file(std::move(file)), m_size(size) {}
    void moveWindowTo(std::uint64_t offset, std::size_t length);

    FileDescriptor m_file;
    std::uint64_t m_size = 0;
    std::uint64_t m_start = 0;
    std::string m_window;
};

}  // namespace tarvik
