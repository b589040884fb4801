#include "MovePlan/MoveDialogs.h"

#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>

namespace tarvik::MoveDialogs {

namespace {

constexpr std::size_t mostRisky = 5;
constexpr std::size_t mostNames = 6;

std::string riskWarning(const std::vector<std::string>& risky) {
    const auto count = std::ssize(risky);
    std::string text = fmt::format("\n\n⚠ {} {} warnings: {}", Text::counted(count, "item"),
                                   count == 1 ? "has" : "have", Text::listed(risky, mostRisky));
    return risky.size() > mostRisky ? text + "." : text;
}

}  // namespace

Dialog confirmAppMove(std::int64_t count, std::int64_t totalBytes, const std::string& driveName,
                      const fs::path& destinationRoot, const std::vector<std::string>& risky) {
    std::string text = fmt::format("Total {}. Originals will be replaced with symlinks pointing at {}/.",
                                   SizeCalculator::format(totalBytes), destinationRoot.native());
    if (!risky.empty()) text += riskWarning(risky);
    return {
        fmt::format("Move {} to {}?", Text::counted(count, "item"), driveName), std::move(text), {"Move", "Cancel"}};
}

Dialog handleRunningApps(const std::vector<std::string>& names) {
    return {fmt::format("{} {} running", Text::counted(std::ssize(names), "selected app"),
                        names.size() == 1 ? "is" : "are"),
            fmt::format("Moving a running app can corrupt it.\n\n{}\n\nQuit them automatically before moving?",
                        Text::listed(names, mostNames)),
            {"Quit & Move", "Cancel", "Move Anyway"}};
}

RunningChoice runningChoice(int button) {
    if (button == 0) return RunningChoice::quitAndMove;
    return button == 2 ? RunningChoice::moveAnyway : RunningChoice::cancel;
}

Dialog confirmRestore(const std::string& name, const fs::path& targetPath) {
    return {fmt::format("Move {} back?", name),
            fmt::format("Moves the contents back from {} and removes the symlink.", targetPath.native()),
            {"Move Back", "Cancel"}};
}

Dialog confirmRestore(std::int64_t count, const std::vector<std::string>& names) {
    const std::string_view ending = count == 1 ? "" : "s";
    return {fmt::format("Move {} back?", Text::counted(count, "item")),
            fmt::format("Moves the selected app{0} back from the external drive and removes the symlink{0}.\n\n{1}",
                        ending, Text::listed(names, mostNames)),
            {"Move Back", "Cancel"}};
}

}  // namespace tarvik::MoveDialogs
