#pragma once

#include <chrono>

namespace tarvik {

/// How long ago the system started this process; zero when it does not tell.
std::chrono::milliseconds processAge();

}  // namespace tarvik
