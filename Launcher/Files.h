#pragma once

#include <string>

namespace launcher {

/// What a small file holds, in `bytes`. False, with errno set, when it cannot be read; a pipe or a device never is.
bool readFile(const std::string& path, std::string& bytes);

/// A path without its last component, and that component alone.
std::string parentOf(const std::string& path);
std::string nameOf(const std::string& path);

/// A name without what it ends with, if it does.
std::string withoutExtension(const std::string& name, const std::string& extension);

}  // namespace launcher
