#pragma once

#include <string>

/// The extended attributes of a Mac, by the name that this system gives them.
namespace tarvik::hdiutil::ItemAttribute {

/// Best effort: a file system that keeps none, or has no room for it, drops it.
void set(int item, const std::string& name, const std::string& value);

}  // namespace tarvik::hdiutil::ItemAttribute
