#include "Installers/Opening/ZipBytes.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik {

std::optional<ZipBytes> ZipBytes::open(const fs::path& file) {
    FileDescriptor handle(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!handle || ::fstat(handle.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return ZipBytes(std::move(handle), static_cast<std::uint64_t>(status.st_size));
}

std::string_view ZipBytes::at(std::uint64_t offset, std::size_t length) {
    if (offset >= m_size) return {};
    length = static_cast<std::size_t>(std::min<std::uint64_t>(length, m_size - offset));
    if (offset < m_start || offset + length > m_start + m_window.size()) moveWindowTo(offset, length);
    return std::string_view(m_window).substr(static_cast<std::size_t>(offset - m_start), length);
}

/// What cannot be read counts as the end of the file.
void ZipBytes::moveWindowTo(std::uint64_t offset, std::size_t length) {
    // Whoever reads on will want more; whoever jumps from header to header will not.
    constexpr std::size_t smallWindow = std::size_t{16} << 10;
    const bool readsOn = offset >= m_start && offset <= m_start + m_window.size();
    const std::size_t wanted = readsOn ? windowSize : std::max(length, smallWindow);
    m_start = offset;
    m_window.resize(static_cast<std::size_t>(std::min<std::uint64_t>(wanted, m_size - offset)));
    std::size_t filled = 0;
    while (filled < m_window.size()) {
        const ssize_t count = ::pread(m_file.get(), m_window.data() + filled, m_window.size() - filled,
                                      static_cast<off_t>(offset + filled));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        filled += static_cast<std::size_t>(count);
    }
    m_window.resize(filled);
    if (filled == 0) m_size = std::min(m_size, offset);
}

}  // namespace tarvik
