#pragma once

#define FUSE_USE_VERSION 31
#include <fuse.h>

namespace tarvik::macvolume::Operations {

/// The calls of a file system in user space, as fuse.h of libfuse 3 names them. Each finds the `Volume` that it is for
/// in the private data of its context.
fuse_operations all();

}  // namespace tarvik::macvolume::Operations
