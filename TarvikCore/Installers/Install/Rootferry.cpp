#include "Installers/Install/Rootferry.h"

#include "Platform/Files/Files.h"

namespace tarvik::Rootferry {

fs::path path(const Host& host) {
    const bool isMachineInFolder = host.root != "/";
    if (isMachineInFolder || Files::exists(host.tools.rootferry)) return host.tools.rootferry;
    return host.home / ".codex/skills/rootferry/rootferry";
}

}  // namespace tarvik::Rootferry
