#include "Platform/Machine/ToolRules.h"
#include "Platform/Processes/ProgramLocation.h"

namespace tarvik {

ToolTable systemTools() {
    ToolTable tools;
    for (const ToolRule& rule : ToolRules::all()) tools.*rule.tool = ToolRules::standIns() / rule.name;
    // What this system has itself answers as it does on a Mac.
    tools.find = "/usr/bin/find";
    tools.ps = "/bin/ps";
    tools.bash = "/bin/bash";
    tools.externalAppLauncher = ProgramLocation::folder() / "external-app-launcher";
    return tools;
}

}  // namespace tarvik
