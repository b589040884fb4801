#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::hdiutil {

/// What the command line asks for.
struct Arguments {
    enum class Verb { none, attach, detach };

    Verb verb = Verb::none;  ///< none where the usage is told
    std::string target{};
    bool wantsList = false;
    bool isQuiet = false;
    std::string asked{};  ///< the word that stands for the verb, understood or not

    static Arguments of(const std::vector<std::string_view>& words);
    std::string usage() const;
};

}  // namespace tarvik::hdiutil
