#include "hdiutil/ImageFile.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tarvik::hdiutil {

ImageFile::ImageFile(const fs::path& path)
    : m_path(Files::resolved(path).value_or(path)), m_file(::open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (!m_file || ::fstat(m_file.get(), &m_status) != 0) throw Failure("hdiutil", 1, systemErrorText(errno));
    if (!S_ISREG(m_status.st_mode)) throw Failure("hdiutil", 1, "image not recognized");
}

std::string ImageFile::bytesAt(std::uint64_t offset, std::size_t count) const {
    std::string bytes(offset < size() ? static_cast<std::size_t>(std::min<std::uint64_t>(count, size() - offset)) : 0,
                      '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t length =
            ::pread(m_file.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) break;
        done += static_cast<std::size_t>(length);
    }
    bytes.resize(done);
    return bytes;
}

}  // namespace tarvik::hdiutil
