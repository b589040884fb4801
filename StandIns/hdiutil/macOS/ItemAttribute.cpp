#include "hdiutil/ItemAttribute.h"

#include <sys/xattr.h>

namespace tarvik::hdiutil::ItemAttribute {

void set(int item, const std::string& name, const std::string& value) {
    ::fsetxattr(item, name.c_str(), value.data(), value.size(), 0, 0);
}

}  // namespace tarvik::hdiutil::ItemAttribute
