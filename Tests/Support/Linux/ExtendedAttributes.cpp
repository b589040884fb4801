#include "Support/ExtendedAttributes.h"

#include <stdexcept>
#include <sys/xattr.h>

namespace tarvik::test {

void setAttribute(const fs::path& path, const std::string& name, const std::string& value) {
    if (::setxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0) != 0)
        throw std::runtime_error(path.native() + " takes no attribute " + name);
}

std::string attributeOf(const fs::path& path, const std::string& name) {
    std::string value(4096, '\0');
    const auto length = ::getxattr(path.c_str(), name.c_str(), value.data(), value.size());
    if (length < 0) throw std::runtime_error(path.native() + " has no attribute " + name);
    value.resize(static_cast<std::size_t>(length));
    return value;
}

}  // namespace tarvik::test
