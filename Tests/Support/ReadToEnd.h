#pragma once

#include <string>

namespace tarvik::test {

/// Everything that can still be read from a descriptor, up to its end; what was read so far when reading fails.
std::string readToEnd(int descriptor);

}  // namespace tarvik::test
