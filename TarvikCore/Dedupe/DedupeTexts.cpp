#include "Dedupe/DedupeTexts.h"

#include "Platform/Files/LastComponent.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tarvik::DedupeTexts {

std::string duplicates(const AppDedupeGroup& group) {
    return Text::counted(std::ssize(group.remove), "duplicate");
}

Dialog confirmRemove(const AppDedupePlan& plan) {
    constexpr std::size_t mostNames = 6;
    const auto items = plan.removableItems();
    std::vector<std::string> names, lines;
    for (const AppDedupeItem& item : items) names.push_back(lastComponent(item.path));
    for (const AppDedupeGroup& group : plan.groups)
        for (const AppDedupeItem& item : group.remove)
            lines.push_back(fmt::format("{} (stays: {})", item.path.native(), group.keep.path.native()));
    return {fmt::format("Remove {}?", Text::counted(std::ssize(items), "duplicate launcher")),
            Text::listed(names, mostNames) + ". They go to the Trash and can be put back. The real applications stay.",
            {"Remove", "Cancel"},
            std::move(lines)};
}

Outcome outcomeOf(const AppDedupeRunResult& result) {
    const auto& moved = result.movedItems;
    const auto failures = std::count_if(moved.begin(), moved.end(), [](const auto& item) { return !item.succeeded; });
    if (failures > 0) return {fmt::format("Dedupe completed with {}.", Text::counted(failures, "failure")), true};
    return {fmt::format("Removed {}.", Text::counted(std::ssize(moved), "duplicate launcher")), false};
}

}  // namespace tarvik::DedupeTexts
