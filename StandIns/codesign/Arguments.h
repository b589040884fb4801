#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::codesign {

/// What the tool is asked to do. Source: codesign(1).
struct Arguments {
    enum class Operation { sign, verify, display };

    Operation operation = Operation::verify;
    std::vector<std::string> paths;
    std::string identity;
    int verbosity = 0;
    bool isForced = false;
    bool isDeep = false;
    bool isStrict = false;

    /// Nothing when they are not understood.
    static std::optional<Arguments> parsed(const std::vector<std::string_view>& words);

    bool operator==(const Arguments&) const = default;
};

}  // namespace tarvik::codesign
