#include "Health/SpotlightHealthCheck.h"

#include "Platform/Machine/SystemFolders.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

namespace tarvik::SpotlightHealthCheck {

std::vector<std::string> warnings(const Host& host, std::chrono::duration<double> limit) {
    for (const char* name : {"/System/Volumes/Data", "/"}) {
        const std::string volume = SystemFolders::below(host, name);
        const auto result = CommandRunner::ask(host.tools.mdutil, {"-s", volume}, {limit});
        const std::string text = result.stdout + "\n" + result.stderr;
        for (const auto& [word, state] :
             {std::pair("read-only", "index is read-only"), std::pair("disabled", "indexing is disabled")})
            if (Text::localizedContains(text, word))
                return {
                    fmt::format("Spotlight {} for {}. Launchpad search may not show new apps. Run: sudo mdutil -i "
                                "on {}",
                                state, volume, volume)};
        if (result.succeeded()) return {};
    }
    return {"Could not check Spotlight indexing; Launchpad visibility may lag."};
}

}  // namespace tarvik::SpotlightHealthCheck
