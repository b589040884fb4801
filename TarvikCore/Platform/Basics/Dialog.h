#pragma once

#include <string>
#include <vector>

namespace tarvik {

/// A question to the user. The first button is the one that goes ahead, the second one cancels.
struct Dialog {
    static constexpr int cancelButton = 1;

    std::string title;
    std::string text;
    std::vector<std::string> buttons;
    /// What else is to be seen before the answer, a line each: the paths in full, and doubts.
    std::vector<std::string> details = {};

    bool operator==(const Dialog&) const = default;
};

}  // namespace tarvik
