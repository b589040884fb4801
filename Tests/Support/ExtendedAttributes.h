#pragma once

#include "Platform/Basics/Path.h"

#include <string>

namespace tarvik::test {

/// Extended attributes of an item, a link followed: the calls for them differ between systems. Names that are meant for
/// every system begin with "user.".
/// @throws std::runtime_error when the system refuses, or there is no such attribute.
void setAttribute(const fs::path& path, const std::string& name, const std::string& value);
std::string attributeOf(const fs::path& path, const std::string& name);

}  // namespace tarvik::test
