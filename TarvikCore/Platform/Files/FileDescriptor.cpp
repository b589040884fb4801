#include "Platform/Files/FileDescriptor.h"

#include <unistd.h>

namespace tarvik {

void FileDescriptor::close() noexcept {
    if (m_descriptor >= 0) ::close(std::exchange(m_descriptor, -1));
}

}  // namespace tarvik
