#include "Platform/Files/AttributeCalls.h"

#include <cerrno>
#include <sys/xattr.h>

namespace tarvik::AttributeCalls {

namespace {

constexpr const char* attributeName = "com.tarvik.trial";

}  // namespace

int put(int handle) {
    return ::fsetxattr(handle, attributeName, "", 0, 0, 0) == 0 ? 0 : errno;
}

int take(int handle) {
    return ::fremovexattr(handle, attributeName, 0) == 0 ? 0 : errno;
}

}  // namespace tarvik::AttributeCalls
