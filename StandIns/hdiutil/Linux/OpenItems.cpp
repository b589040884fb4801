#include "hdiutil/OpenItems.h"

#include "Platform/Files/Files.h"

namespace tarvik::hdiutil::OpenItems {

namespace {

bool leadsBelow(const fs::path& link, const fs::path& volume) {
    const auto target = Files::linkText(link);
    return target && Files::isAtOrBelow(*target, volume);
}

}  // namespace

// The links in proc(5) say where each process works and what it has open.
bool areBelow(const fs::path& volume) {
    const fs::path processes = "/proc";
    for (const std::string& process : Files::names(processes)) {
        if (process.find_first_not_of("0123456789") != std::string::npos) continue;
        const fs::path folder = processes / process;
        if (leadsBelow(folder / "cwd", volume) || leadsBelow(folder / "exe", volume)) return true;
        for (const std::string& number : Files::names(folder / "fd"))
            if (leadsBelow(folder / "fd" / number, volume)) return true;
    }
    return false;
}

}  // namespace tarvik::hdiutil::OpenItems
