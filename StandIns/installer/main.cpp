#include "MachineShell/MachineRoot.h"
#include "Packages/FlatPackage.h"
#include "Packages/FolderPackage.h"
#include "Platform/Files/Files.h"
#include "installer/Installation.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Installs packages, as a Mac's installer(8) does, on the machine in the folder that the environment variable
// TARVIK_ROOT names, and on no other:
//
//     installer -pkg PACKAGE -target /
//
// The words are those of published sessions. What differs, and why nothing may count on it:
// - Whoever may write in the machine's folder installs; on a Mac only root does. Owners are given only as root, and the
//   rights of set-id bits never.
// - A package is looked through to its end before anything is written. One that would write outside of the machine, or
//   make devices, installs nothing; nor does a product that decides by a script of its own what it installs.
// - Scripts see the machine alone (`MachineShell`), and none of a Mac's programs but the stand-ins. Where that cannot
// be,
//   a package with scripts is not installed.
// - Files of a Mac's attributes ("._name") stay files. An application that was moved is not looked for.

namespace {

using namespace tarvik;

constexpr int failed = 1;

std::optional<fs::path> packageOf(const std::vector<std::string_view>& words) {
    std::optional<fs::path> package;
    bool isForThisDisk = false;
    for (std::size_t index = 0; index + 1 < words.size(); index += 2) {
        if (words[index] == "-pkg")
            package = words[index + 1];
        else if (words[index] == "-target" && words[index + 1] == "/")
            isForThisDisk = true;
        else
            return std::nullopt;
    }
    return words.size() % 2 == 0 && isForThisDisk ? package : std::nullopt;
}

int install(const fs::path& root, const fs::path& package) {
    if (!Files::exists(package)) {
        std::fprintf(stderr, "installer: Error - the package path specified was invalid: '%s'.\n", package.c_str());
        return failed;
    }
    const auto product =
        Files::exists(package / ".") ? packages::FolderPackage::open(package) : packages::FlatPackage::open(package);
    installer::Installation installation(root, package, product);
    std::printf("installer: Package name is %s\n", product.name.c_str());
    const bool isUpgrade = installation.isUpgrade();
    std::printf("installer: %s at base path /\n", isUpgrade ? "Upgrading" : "Installing");
    std::fflush(stdout);
    installation.run();
    std::printf("installer: The %s was successful.\n", isUpgrade ? "upgrade" : "install");
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const auto package = packageOf({argv + 1, argv + argc});
    if (!package) {
        std::fputs("Usage: installer -pkg PACKAGE -target /\n", stderr);
        return failed;
    }
    try {
        const auto root = MachineRoot::ofEnvironment();
        if (!root) {
            std::fputs("installer: Packages are installed only on a machine in a folder.\n", stderr);
            return failed;
        }
        return install(*root, Files::standardized(*package));
    } catch (const installer::ScriptFailure& failure) {
        std::fprintf(
            stderr,
            "installer: The install failed. (The Installer encountered an error that caused the installation to "
            "fail. Contact the software manufacturer for assistance. %s)\n",
            failure.what());
    } catch (const std::exception& failure) {
        std::fprintf(
            stderr,
            "installer: %s\ninstaller: The install failed. (The Installer encountered an error that caused the "
            "installation to fail. Contact the software manufacturer for assistance.)\n",
            failure.what());
    }
    return failed;
}
