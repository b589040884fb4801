#include "Faults/AloneOnTheMachine.h"

#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"

namespace tarvik::test::AloneOnTheMachine {

const std::optional<std::vector<std::string>>& words() {
    static const auto words = [] {
        for (const auto& options : {std::vector<std::string>{}, {"--user", "--map-current-user"}}) {
            std::vector<std::string> all = {"/usr/bin/unshare"};
            all.insert(all.end(), options.begin(), options.end());
            all.insert(all.end(), {"--pid", "--fork", "--mount-proc"});
            auto trial = std::vector<std::string>(all.begin() + 1, all.end());
            trial.emplace_back("/bin/true");
            if (Files::exists(all.front()) && CommandRunner::run(all.front(), trial).succeeded())
                return std::optional(all);
        }
        return std::optional<std::vector<std::string>>();
    }();
    return words;
}

}  // namespace tarvik::test::AloneOnTheMachine
