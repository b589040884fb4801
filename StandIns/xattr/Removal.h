#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>

/// Takes extended attributes away.
namespace tarvik::xattr::Removal {

struct What {
    /// All of them where there is no name.
    std::optional<std::string> name;
    /// A folder with everything in it.
    bool isRecursive = false;
    /// Of links themselves, and not of what they lead to.
    bool isOfLinks = false;
};

/// Says on standard error what could not be done, and goes on. @returns whether nothing was said.
bool remove(const fs::path& item, const What& what);

}  // namespace tarvik::xattr::Removal
