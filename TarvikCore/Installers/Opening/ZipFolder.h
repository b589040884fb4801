#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/Host.h"

#include <string_view>

namespace tarvik {

/// A new folder in the host's temporary one, for what is in an archive. It is locked for as long as the handle is open.
struct ZipFolder {
    fs::path path;
    FileDescriptor handle;

    /// For the caller alone. @throws FileError
    static ZipFolder make(const Host& host);
    /// Whether a folder of this name is one.
    static bool isName(std::string_view name);
};

}  // namespace tarvik
