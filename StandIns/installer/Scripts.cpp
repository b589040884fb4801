#include "installer/Scripts.h"

#include "MachineShell/MachineRoot.h"
#include "MachineShell/MachineShell.h"
#include "Packages/BoundedTree.h"
#include "Packages/PackageFailure.h"
#include "Packages/Payload.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::installer {

namespace {

using packages::BoundedTree;
using packages::SafeName::Components;

constexpr const char* folderOfSandboxes = "private/tmp";
constexpr const char* sandboxPrefix = "PKInstallSandbox.";

FileDescriptor lockOf(const fs::path& folder) {
    FileDescriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (handle && ::flock(handle.get(), LOCK_EX | LOCK_NB) != 0) handle.close();
    return handle;
}

/// A folder of the machine as this system sees it: nothing when a link leads out of the machine.
std::optional<fs::path> realFolder(const fs::path& root, const fs::path& relative) {
    auto resolved = Files::resolved(root / relative);
    if (!resolved || !Files::isAtOrBelow(*resolved, root)) return std::nullopt;
    return resolved;
}

/// Removes what killed installations have left: nobody holds a lock on it.
void clearLeftovers(const fs::path& root) {
    const fs::path folder = realFolder(root, folderOfSandboxes).value_or(fs::path());
    if (folder.empty()) return;
    for (const std::string& name : Files::names(folder))
        if (name.starts_with(sandboxPrefix))
            if (const FileDescriptor lock = lockOf(folder / name))
                ignoringFailure([&] { Files::removeItem(folder / name); });
}

Components componentsOf(const fs::path& relative) {
    return packages::SafeName::components(relative.native()).value_or(Components());
}

/// Where the scripts' words go, as on a Mac.
FileDescriptor logOf(const fs::path& root) {
    const auto folder = realFolder(root, "private/var/log");
    if (!folder) packages::failUnsafe("The machine keeps its logs outside of itself.");
    const fs::path file = *folder / "install.log";
    FileDescriptor log(::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644));
    if (!log) throw FileError("open", file, errno);
    return log;
}

}  // namespace

Scripts::Scripts(const fs::path& root, const fs::path& package, const packages::Component& component)
    : m_root(root), m_package(package), m_component(component) {
    clearLeftovers(root);
}

Scripts::~Scripts() {
    if (!m_place.empty()) ignoringFailure([&] { Files::removeItem(m_place); });
}

void Scripts::unpack() {
    if (m_isUnpacked) return;
    m_sandbox = fs::path(folderOfSandboxes) / (sandboxPrefix + newIdentifier().substr(0, 8));
    BoundedTree tree(m_root, BoundedTree::Links::followed);
    tree.makeFolder(componentsOf(m_sandbox), {.mode = 0755, .user = ::geteuid(), .group = ::getegid()});
    tree.makeFolder({"private", "var", "log"}, {.mode = 0755});
    tree.finish();
    const auto place = realFolder(m_root, m_sandbox);
    if (!place) packages::failUnsafe("The machine keeps its temporary files outside of itself.");
    m_place = *place;
    m_lock = lockOf(m_place);
    if (m_component.scripts) packages::Payload::write(m_component.scripts(), tree, componentsOf(m_sandbox / "Scripts"));
    m_isUnpacked = true;
}

std::map<std::string, std::string> Scripts::environmentOf(const std::string& name) const {
    const std::string temporary = "/" / m_sandbox;
    const std::string package = MachineRoot::pathInside(m_root, m_package).value_or(m_package);
    return {{"COMMAND_LINE_INSTALL", "1"},
            {"DSTROOT", "/" + packages::SafeName::joined(m_component.place)},
            {"DSTVOLUME", "/"},
            {"HOME", MachineRoot::home(m_root)},
            {"INSTALLER_SECURE_TEMP", temporary},
            {"INSTALLER_TEMP", temporary},
            {"INSTALL_PKG_SESSION_ID", m_component.identifier},
            {"LOGNAME", "root"},
            {"PACKAGE_PATH", package},
            {"RECEIPT_PATH", temporary},
            {"SCRIPT_NAME", fs::path(name).filename()},
            {"SHARED_INSTALLER_TEMP", temporary},
            {"SHELL", "/bin/bash"},
            {"TMPDIR", temporary},
            {"USER", "root"}};
}

void Scripts::run(const std::vector<std::string>& names) {
    for (const std::string& name : names) runOne(name);
}

void Scripts::runOne(const std::string& name) {
    unpack();
    const FileDescriptor log = logOf(m_root);
    const auto environment = environmentOf(name);
    MachineShell::Command command;
    command.folder = "/" / m_sandbox / "Scripts";
    fs::path script = command.folder / name;
    if (m_component.scriptFolder) {
        script = *m_component.scriptFolder / name;
        command.shown = {*m_component.scriptFolder};
        command.folder = *m_component.scriptFolder;
    }
    command.shown.insert(command.shown.begin(), m_package);
    command.arguments = {script, environment.at("PACKAGE_PATH"), environment.at("DSTROOT"), "/", "/"};
    command.environment = environment;
    command.output = log.get();
    if (MachineShell::run(m_root, command) != 0) throw ScriptFailure(m_component.name);
}

}  // namespace tarvik::installer
