#pragma once

#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Path.h"

#include <cstdint>
#include <string>
#include <vector>

/// The questions around the moves of applications, word for word, for every front. Pure. In each the first button is
/// the one that goes ahead.
namespace tarvik::MoveDialogs {

/// What is to happen to applications that are running.
enum class RunningChoice { quitAndMove, cancel, moveAnyway };

/// Whether `count` applications shall move. `totalBytes` is what all their jobs hold; `risky` names those that the user
/// is warned of.
Dialog confirmAppMove(std::int64_t count, std::int64_t totalBytes, const std::string& driveName,
                      const fs::path& destinationRoot, const std::vector<std::string>& risky);

/// What shall happen to the applications of these names, which are running; `runningChoice` reads the answer.
Dialog handleRunningApps(const std::vector<std::string>& names);
/// The meaning of the button that was pressed. Every one but the first and the third is a no.
RunningChoice runningChoice(int button);

/// Whether what stands at `targetPath` shall come back, to where its link or launcher `name` stands.
Dialog confirmRestore(const std::string& name, const fs::path& targetPath);
/// Whether several items shall come back. `count` is how many, `names` what their links are called.
Dialog confirmRestore(std::int64_t count, const std::vector<std::string>& names);

}  // namespace tarvik::MoveDialogs
