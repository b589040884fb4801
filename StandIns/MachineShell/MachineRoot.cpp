#include "MachineShell/MachineRoot.h"

#include "Platform/Files/Files.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace tarvik::MachineRoot {

std::optional<fs::path> ofEnvironment() {
    const char* named = std::getenv("TARVIK_ROOT");
    if (!named || !*named) return std::nullopt;
    auto root = Files::resolved(named);
    if (!root || *root == "/" || !Files::isFolder(*root)) return std::nullopt;
    return root;
}

std::optional<fs::path> pathInside(const fs::path& root, const fs::path& path) {
    if (!path.is_absolute()) return std::nullopt;
    const fs::path standardized = Files::standardized(path);
    if (!Files::isAtOrBelow(standardized, root)) return standardized;
    return Files::standardized("/" / standardized.lexically_relative(root));
}

fs::path home(const fs::path& root) {
    const char* named = std::getenv("HOME");
    if (named && *named) {
        const auto resolved = Files::resolved(named);
        if (resolved && *resolved != root && Files::isAtOrBelow(*resolved, root)) return *pathInside(root, *resolved);
    }
    std::vector<std::string> users;
    for (const std::string& name : Files::names(root / "Users"))
        if (name != "Shared" && !name.starts_with('.') && Files::isFolder(root / "Users" / name)) users.push_back(name);
    return users.size() == 1 ? fs::path("/Users") / users.front() : fs::path("/var/root");
}

}  // namespace tarvik::MachineRoot
