#pragma once

#include <map>
#include <optional>
#include <string>

namespace tarvik {

/// How the environment of a tool differs from that of this process, by the names of variables: each has the value that
/// stands here, or is left out where there is none.
using EnvironmentChange = std::map<std::string, std::optional<std::string>>;

}  // namespace tarvik
