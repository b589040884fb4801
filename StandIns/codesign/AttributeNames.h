#pragma once

#include <string>

namespace tarvik::codesign {

/// The names of an open item's extended attributes, each with a NUL behind it; empty when it has or tells none.
std::string attributeNamesOf(int item);

}  // namespace tarvik::codesign
