#pragma once

#include <functional>
#include <string>

namespace tarvik::test {

/// What an act tells the user when it fails; "done" when it does not.
std::string failureOf(const std::function<void()>& act);
/// What this system says of an errno value; the words differ between systems.
std::string wordsFor(int error);

}  // namespace tarvik::test
