#pragma once

#include <cstdint>
#include <string_view>

/// What makes a bundle a generated launcher, wherever it is written or read.
namespace tarvik::LauncherLayout {

/// Holds the path of the application that the launcher opens: the one mark of a launcher.
inline constexpr std::string_view targetFile = "Contents/Resources/ExternalAppTarget.txt";
/// Far more than any path takes, in bytes.
inline constexpr std::int64_t longestTarget = std::int64_t{64} * 1024;

/// The name of its program, and where that stands.
inline constexpr std::string_view executable = "ExternalAppLauncher";
inline constexpr std::string_view executableFile = "Contents/MacOS/ExternalAppLauncher";

/// What its identifier has behind the one of the application.
inline constexpr std::string_view identifierSuffix = ".externallauncher";

}  // namespace tarvik::LauncherLayout
