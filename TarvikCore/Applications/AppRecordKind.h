#pragma once

#include <optional>
#include <string_view>

namespace tarvik {

/// What an application is, as far as moving and removing it are concerned.
enum class AppRecordKind {
    normal,            ///< an ordinary application
    userApplications,  ///< lives under the user's own Applications folder
    symlink,           ///< the bundle path is a link
    tarvikLauncher,    ///< a launcher that we generated
    externalTarget,    ///< a real bundle inside our folder on a drive
    macAppStore,       ///< has a Mac App Store receipt
    systemRisky,       ///< under the system's own folder; never to be removed
};

/// The text that stands for a kind in JSON: the enumerator's own name.
std::string_view textOf(AppRecordKind kind);
std::optional<AppRecordKind> appRecordKindOf(std::string_view text);

}  // namespace tarvik
