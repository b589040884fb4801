#pragma once

#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/AppUninstallPlan.h"
#include "UninstallRun/AppUninstallSession.h"
#include "UninstallRun/UninstallUndo.h"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// What the user is asked before an uninstall and before its way back, for every front.
namespace tarvik::UninstallQuestions {

/// Whether the plan shall be carried out. Pure.
Dialog confirm(const AppUninstallPlan& plan);

/// What of that which is to go is only a link, and what it leads to: that stays. A sentence each. Looks at the disk.
std::vector<std::string> leftBehind(const AppUninstallPlan& plan, const std::set<std::string>& selectedPaths);

/// One thing of a plan that is in use.
struct Running {
    fs::path path;
    /// What the user knows it by: the application's name, or the program of a launch agent or daemon.
    std::string name;
    /// Whether the machine can be asked to quit it.
    bool canQuit = false;
    /// It stands in no bundle: nothing can ask it to quit, and it keeps no uninstall from going ahead.
    bool isBareProgram = false;

    bool operator==(const Running&) const = default;
};

/// What runs of that which is to go: the bundle, its copy on a drive, and the programs that its launch agents and
/// daemons start. Without paths of all that goes by default. Blocks; any thread; never fails.
std::vector<Running> running(const Host& host, const AppUninstallPlan& plan,
                             const std::optional<std::set<std::string>>& selectedPaths);

/// What shall happen to them: the first button quits them and goes ahead, the second cancels. Pure.
Dialog quitRunning(const std::vector<Running>& running);

/// What is told of a bare program. Pure.
std::string goesOn(const Running& running);

/// Whether those items of a past uninstall that wait shall come back; what cannot is told with it. Pure.
Dialog confirmPutBack(const AppUninstallSession& session, const std::vector<UninstallUndo::Item>& items);

/// How long a program that was asked to quit may take: as long as for a move.
inline constexpr std::chrono::seconds quitTimeout{8};

/// Asks those to quit that can be asked, and waits up to `timeout` for each, and for the other bundles to end by
/// themselves: a helper may follow its application. Ends none by force, and waits for no bare program. @throws
/// AppUninstallError when one still runs then; nothing else has been touched.
void quit(const Host& host, const std::vector<Running>& running, std::chrono::duration<double> timeout = quitTimeout);

}  // namespace tarvik::UninstallQuestions
