#pragma once

#include "Platform/Machine/Host.h"

#include <chrono>
#include <string>
#include <vector>

/// Whether the system's search will show new launchers.
namespace tarvik::SpotlightHealthCheck {

/// How long the tool may take for each volume.
inline constexpr std::chrono::seconds toolTimeout{20};

/// Warnings for a plan, one sentence each; none when the index is all right. Blocks for one or two runs of a tool, each
/// of which is stopped after `limit`; any thread; never fails.
std::vector<std::string> warnings(const Host& host, std::chrono::duration<double> limit = toolTimeout);

}  // namespace tarvik::SpotlightHealthCheck
