#pragma once

#include <string>

namespace tarvik::test {

/// A script for the system's shell, with the lines that let `cp -aT` copy to exactly the named place everywhere: only
/// some systems know the T.
std::string scriptOf(const std::string& lines);

}  // namespace tarvik::test
