#include "codesign/AttributeNames.h"

#include <cstddef>
#include <sys/types.h>
#include <sys/xattr.h>

namespace tarvik::codesign {

std::string attributeNamesOf(int item) {
    const ssize_t needed = ::flistxattr(item, nullptr, 0, 0);
    if (needed <= 0) return {};
    std::string names(static_cast<std::size_t>(needed), '\0');
    const ssize_t length = ::flistxattr(item, names.data(), names.size(), 0);
    names.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return names;
}

}  // namespace tarvik::codesign
