#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Processes/CommandResult.h"

#include <string>
#include <vector>

/// Runs the stand-ins that were built with the tests.
namespace tarvik::test {

/// Runs the stand-in `name` to its end. One that waits for something is stopped, and the test fails.
CommandResult runStandIn(const std::string& name, const std::vector<std::string>& arguments);

}  // namespace tarvik::test
