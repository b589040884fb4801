#pragma once

#include <optional>
#include <string_view>

namespace tarvik {

/// How far the run of an installer has come.
enum class InstallerSessionStatus {
    pendingExternalize,  ///< installed; applications still wait to be moved to the drive
    done,                ///< finished
    failed,              ///< the install itself failed
};

/// The text that stands for it in records: the enumerator's own name.
std::string_view textOf(InstallerSessionStatus status);
std::optional<InstallerSessionStatus> installerSessionStatusOf(std::string_view text);

}  // namespace tarvik
