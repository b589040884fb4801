#include "hdiutil/ItemAttribute.h"

#include <sys/xattr.h>

namespace tarvik::hdiutil::ItemAttribute {

// Linux lets programs name only attributes that begin with "user." (xattr(7)).
void set(int item, const std::string& name, const std::string& value) {
    ::fsetxattr(item, ("user." + name).c_str(), value.data(), value.size(), 0);
}

}  // namespace tarvik::hdiutil::ItemAttribute
