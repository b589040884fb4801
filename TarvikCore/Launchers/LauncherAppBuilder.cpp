#include "Launchers/LauncherAppBuilder.h"

#include "Applications/LauncherLayout.h"
#include "Copying/Disposal.h"
#include "Copying/HiddenName.h"
#include "Copying/HiddenPlace.h"
#include "Copying/ItemLock.h"
#include "Copying/Leftovers.h"
#include "Launchers/LauncherDocumentTypes.h"
#include "Launchers/LauncherSigning.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace tarvik::LauncherAppBuilder {

namespace {

constexpr std::int64_t largestIcon = std::int64_t{64} << 20;
constexpr std::int64_t largestProgram = std::int64_t{64} << 20;
constexpr mode_t permissionsOfProgram = 0755;

void log(const InstallerRunReporter& reporter, std::string_view tag, std::string_view text) {
    reporter.log(fmt::format("{}\t{}", tag, text));
}

/// Whether a bundle is a launcher for `target` that works.
bool opens(const fs::path& launcher, const fs::path& target) {
    bool isMarked = false;
    ignoringFailure([&] {
        isMarked = Files::read(launcher / LauncherLayout::targetFile, LauncherLayout::longestTarget) == target.native();
    });
    return isMarked && Files::exists(launcher / LauncherLayout::executableFile);
}

std::string launcherID(const PropertyList& metadata) {
    const std::string identifier = metadata.text("CFBundleIdentifier").value_or(std::string());
    return fmt::format("{}{}", identifier.empty() ? "app.external.launcher" : identifier,
                       LauncherLayout::identifierSuffix);
}

std::string displayName(const PropertyList& metadata, const fs::path& launcher) {
    for (const std::string_view key : {"CFBundleDisplayName", "CFBundleName"})
        if (auto name = metadata.text(key)) return std::move(*name);
    return launcher.stem();
}

/// Gives the name that the icon has in the launcher, also when it could not be copied.
std::optional<std::string> copyIcon(const fs::path& from, const fs::path& to, const PropertyList& metadata) {
    auto name = metadata.text("CFBundleIconFile");
    // A path could lead out of both bundles.
    if (!name || name->find('/') != std::string::npos) return std::nullopt;
    if (!name->ends_with(".icns")) *name += ".icns";
    const fs::path icon = from / "Contents/Resources" / *name;
    if (!Files::exists(icon)) return std::nullopt;
    ignoringFailure([&] { Files::createFile(to / *name, Files::read(icon, largestIcon)); });
    return name;
}

PropertyList infoOf(const PropertyList& metadata, const fs::path& launcher, const std::optional<std::string>& icon) {
    const std::string name = displayName(metadata, launcher);
    PropertyList::Dictionary info = {
        {"CFBundleExecutable", std::string(LauncherLayout::executable)},
        {"CFBundleIdentifier", launcherID(metadata)},
        {"CFBundleInfoDictionaryVersion", "6.0"},
        {"CFBundleName", name},
        {"CFBundleDisplayName", name},
        {"CFBundlePackageType", "APPL"},
        {"CFBundleShortVersionString", metadata.text("CFBundleShortVersionString").value_or("1.0")},
        {"CFBundleVersion", metadata.text("CFBundleVersion").value_or("1")},
        {"LSMinimumSystemVersion", "10.13"},
    };
    if (icon) info.emplace("CFBundleIconFile", *icon);
    if (auto types = LauncherDocumentTypes::of(metadata); !types.empty())
        info.emplace("CFBundleDocumentTypes", std::move(types));
    return info;
}

fs::path launcherBinary(const Host& host) {
    if (Files::exists(host.tools.externalAppLauncher)) return host.tools.externalAppLauncher;
    const char* named = std::getenv("TARVIK_LAUNCHER_BINARY");
    if (named && Files::exists(named)) return named;
    throw Failure("launcher", 1, "Launcher binary is missing.");
}

/// Makes a folder as open as another one: a claimed place is its owner's alone.
void openAs(const fs::path& other, const fs::path& folder) {
    std::error_code error;
    const auto permissions = fs::status(other, error).permissions();
    if (!error) fs::permissions(folder, permissions, error);
    if (error) throw FileError("create the folder", folder, error.value());
}

/// Writes the launcher that will stand at `launcher`.
void writeBundle(const Host& host, const fs::path& bundle, const fs::path& sourceApp, const fs::path& launcher,
                 const fs::path& target) {
    const fs::path resources = bundle / "Contents/Resources";
    Files::createFolder(bundle / "Contents/MacOS");
    Files::createFolder(resources);
    openAs(bundle / "Contents", bundle);
    const PropertyList metadata = PropertyList::dictionaryAt(sourceApp / "Contents/Info.plist");
    const auto icon = copyIcon(sourceApp, resources, metadata);
    Files::createFile(bundle / "Contents/Info.plist", infoOf(metadata, launcher, icon).xml());
    Files::createFile(bundle / LauncherLayout::executableFile, Files::read(launcherBinary(host), largestProgram),
                      permissionsOfProgram);
    Files::createFile(bundle / LauncherLayout::targetFile, target.native());
    Files::createFile(bundle / "Contents/PkgInfo", "APPL????");
}

HiddenPlace::Claim claimedPlace(const fs::path& launcher) {
    try {
        Files::createFolder(launcher.parent_path());
        return HiddenPlace::claimForCopyTo(launcher);
    } catch (const FileError& error) {
        throw FileError("create the folder", launcher, error.code());
    }
}

/// What stood at the launcher's place when its making began.
using Standing = std::optional<Files::ItemInfo>;

/// Lets the finished bundle take the place of `stood`, which is disposed of only then.
void exchangeAndStash(const Host& host, const fs::path& bundle, const fs::path& launcher, const Standing& stood) {
    const fs::path between = HiddenName::forExchangeOf(launcher);
    Files::exchange(bundle, launcher, between);
    Disposal::Outcome outcome{Disposal::Outcome::End::stayed, bundle};
    // Whatever was put there since, a real application for instance, is nobody's to take away.
    if (Files::isSameItem(Files::info(bundle), stood))
        outcome = HiddenPlace::moveAside(host, bundle, launcher, "launcher-replace");
    if (outcome.end != Disposal::Outcome::End::stayed) return;
    Files::exchange(outcome.place, launcher, between);
    throw FileError("replace", launcher, EEXIST);
}

/// Gives the finished bundle its place, or leaves there what stands there.
void putInPlace(const Host& host, const fs::path& bundle, const fs::path& launcher, const Standing& stood,
                const InstallerRunReporter& reporter) {
    try {
        if (!stood) return Files::rename(bundle, launcher);
        log(reporter, "stash-existing-launcher", launcher.native());
        exchangeAndStash(host, bundle, launcher, stood);
    } catch (const FileError& error) {
        throw FileError("put a launcher at", launcher, error.code());
    }
}

void build(const Host& host, const fs::path& sourceApp, const fs::path& launcher, const fs::path& target,
           const InstallerRunReporter& reporter) {
    Leftovers::sweep(host, launcher.parent_path());
    // Held, so that its number is nobody else's meanwhile.
    const FileDescriptor held = ItemLock::hold(launcher);
    const Standing stood = Files::info(launcher);
    const HiddenPlace::Claim hidden = claimedPlace(launcher);
    const auto bundle = Files::info(hidden.path);
    try {
        writeBundle(host, hidden.path, sourceApp, launcher, target);
        putInPlace(host, hidden.path, launcher, stood, reporter);
    } catch (...) {
        // Half a launcher would pass for an application that does not start, and keep a whole one from its place.
        // Once it has taken its place, what stood there stands here.
        if (Files::isSameItem(Files::info(hidden.path), bundle))
            ignoringFailure([&] { Files::removeItem(hidden.path); });
        HiddenName::rethrowInOwnName(hidden.path, launcher);
    }
    reporter.log(fmt::format("launcher-app\t{}\t{}", launcher.native(), target.native()));
}

}  // namespace

void install(const Host& host, const fs::path& sourceApp, const fs::path& launcher, const fs::path& target,
             const InstallerRunReporter& reporter) {
    if (opens(launcher, target)) {
        log(reporter, "reuse-launcher", launcher.native());
    } else {
        build(host, sourceApp, launcher, target, reporter);
        LauncherSigning::sign(host, launcher, reporter);
    }
    LauncherSigning::enter(host, launcher, reporter);
}

}  // namespace tarvik::LauncherAppBuilder
