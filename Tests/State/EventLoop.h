#pragma once

#include <functional>

namespace tarvik::test {

/// Runs the event loop until `isTrue`. Fails the test after a minute, which no healthy one needs.
void spinUntil(const std::function<bool()>& isTrue);

/// Runs the event loop until everything that is posted by now has run.
void spinOnce();

}  // namespace tarvik::test
