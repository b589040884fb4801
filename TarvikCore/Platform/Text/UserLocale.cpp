#include "Platform/Text/UserLocale.h"

#include <cstdlib>
#include <string_view>

namespace tarvik {

std::string UserLocale::name() {
    for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (!value || !*value) continue;
        const std::string_view name(value);
        const bool isForMachines = name == "C" || name == "POSIX" || name.starts_with("C.");
        return isForMachines ? std::string() : std::string(name);
    }
    return inSystemSettings();
}

}  // namespace tarvik
