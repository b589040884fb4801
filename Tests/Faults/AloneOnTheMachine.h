#pragma once

#include <optional>
#include <string>
#include <vector>

/// Lets a program see no process but its own: how many calls it takes to look at them all would differ from run to run.
namespace tarvik::test::AloneOnTheMachine {

/// The words before its command line. Nothing where the system does not allow that.
const std::optional<std::vector<std::string>>& words();

}  // namespace tarvik::test::AloneOnTheMachine
