#pragma once

#include <utility>

namespace tarvik {

/// Owns one open file descriptor and closes it at the end of its life.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            m_descriptor = std::exchange(other.m_descriptor, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }

    int get() const noexcept { return m_descriptor; }
    explicit operator bool() const noexcept { return m_descriptor >= 0; }
    /// Gives the descriptor away: the caller closes it.
    int release() noexcept { return std::exchange(m_descriptor, -1); }
    /// Closes it now; nothing happens when it is closed already.
    void close() noexcept;

private:
    int m_descriptor = -1;
};

}  // namespace tarvik
