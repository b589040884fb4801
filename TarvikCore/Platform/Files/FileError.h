#pragma once

#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"

#include <string_view>

namespace tarvik {

/// A failure of the file system, in words: "Could not create the folder /a/b: Permission denied".
/// Its domain is "Files" and its code is the errno value.
class FileError : public Failure {
public:
    /// `verb` is what was tried, with its object where that helps: "create the folder", "read", "remove".
    FileError(std::string_view verb, const fs::path& path, int errorNumber);
};

/// The system's words for an errno value, "No space left on device". Safe on every thread.
std::string systemErrorText(int errorNumber);

}  // namespace tarvik
