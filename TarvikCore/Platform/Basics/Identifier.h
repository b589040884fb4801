#pragma once

#include <string>

namespace tarvik {

/// A new UUID in its text form, upper case: "9B2F0C4E-...". Safe on every thread.
std::string newIdentifier();

}  // namespace tarvik
