#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <array>
#include <string_view>

/// The names of every folder that the system makes on a drive and under the user's Library. Nothing here makes a
/// folder.
namespace tarvik::AppStorageNames {

/// Directly under a drive's mount path.
inline constexpr std::string_view externalRoot = "ExternalTarvik";
/// Root folders of earlier layouts: read when old links are retargeted, never written.
inline constexpr std::array<std::string_view, 1> legacyExternalRoots = {"Tarvik"};
/// Under the external root.
inline constexpr std::string_view apps = "Apps";
inline constexpr std::string_view data = "Data";
inline constexpr std::string_view folders = "Folders";
inline constexpr std::string_view plugins = "Plugins";
/// Beside the external root.
inline constexpr std::string_view backupsRoot = "TarvikBackups";
/// Under the support root.
inline constexpr std::string_view installerSessions = "InstallerSessions";
inline constexpr std::string_view installerOptions = "InstallerOptions";
inline constexpr std::string_view installerCache = "InstallerCache";
inline constexpr std::string_view uninstallSessions = "UninstallSessions";

/// The folders on the drive that is mounted at `mountPath`.
fs::path externalRootOn(const fs::path& mountPath);
fs::path appsRootOn(const fs::path& mountPath);
fs::path dataRootOn(const fs::path& mountPath);
fs::path foldersRootOn(const fs::path& mountPath);
fs::path backupsRootOn(const fs::path& mountPath);

/// The user's Library/Application Support/Tarvik, and the folders in it.
fs::path supportRoot(const Host& host);
fs::path sessionRoot(const Host& host);
fs::path userInstallerOptionsRoot(const Host& host);
fs::path uninstallSessionRoot(const Host& host);

}  // namespace tarvik::AppStorageNames
