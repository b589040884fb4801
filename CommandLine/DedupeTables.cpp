#include "CommandLine/DedupeTables.h"

#include "CommandLine/Output/Columns.h"
#include "Dedupe/DedupeTexts.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarvik::CommandLine::DedupeTables {

namespace {

std::string lineOf(std::string_view verb, const AppDedupeItem& item) {
    return fmt::format("  {:<6}  {}  ({})\n", verb, Columns::oneLine(item.path.native()),
                       SizeCalculator::format(item.sizeBytes));
}

std::string textOfGroup(const AppDedupeGroup& group) {
    std::string text = fmt::format("\n{}  ({})\n", Columns::oneLine(group.displayName), DedupeTexts::duplicates(group));
    text += lineOf("Keep", group.keep);
    for (const AppDedupeItem& item : group.remove) {
        text += lineOf("Remove", item);
        if (item.targetPath) text += fmt::format("          target: {}\n", Columns::oneLine(item.targetPath->native()));
    }
    return text + fmt::format("  {}\n", group.reason);
}

std::string actionOn(const AppDedupeItem& item, const AppDedupeGroup& group) {
    if (item.path == group.keep.path) return "keep";
    const bool goes = std::any_of(group.remove.begin(), group.remove.end(),
                                  [&](const AppDedupeItem& each) { return each.path == item.path; });
    return goes ? "remove" : "leave";
}

Record recordOf(const AppDedupeItem& item, const AppDedupeGroup& group) {
    return {{"group", group.bundleIdentifier},
            {"groupName", group.displayName},
            {"action", actionOn(item, group)},
            {"path", item.path.native()},
            {"bytes", item.sizeBytes},
            {"target", item.targetPath ? item.targetPath->native() : std::string()},
            {"kind", std::string(textOf(item.kind))},
            {"name", item.displayName},
            {"bundleIdentifier", item.bundleIdentifier},
            {"effectiveBundleIdentifier", item.effectiveBundleIdentifier},
            {"insideSymlinkedFolder", item.insideSymlinkedFolder},
            {"reason", group.reason}};
}

Record recordOf(const AppUninstallSession::MovedItem& item) {
    return {{"path", item.originalPath.native()},
            {"bytes", item.sizeBytes},
            {"state", std::string(item.succeeded ? "done" : "failed")},
            {"trashedTo", item.trashedTo ? item.trashedTo->native() : std::string()},
            {"description", item.error.value_or("")}};
}

std::vector<Record> recordsOf(const AppDedupePlan& plan) {
    std::vector<Record> records;
    for (const AppDedupeGroup& group : plan.groups)
        for (const AppDedupeItem& item : group.items) records.push_back(recordOf(item, group));
    return records;
}

std::vector<Record> recordsOf(const AppDedupeRunResult& result) {
    std::vector<Record> records;
    records.reserve(result.movedItems.size());
    for (const auto& item : result.movedItems) records.push_back(recordOf(item));
    return records;
}

}  // namespace

std::string human(const AppDedupePlan& plan) {
    std::string text = fmt::format("Groups {}  Remove {}  Space {}\n", plan.groups.size(), plan.removableItems().size(),
                                   SizeCalculator::format(plan.removableBytes()));
    for (const AppDedupeGroup& group : plan.groups) text += textOfGroup(group);
    return text;
}

std::string tsv(const AppDedupePlan& plan) {
    return CommandLine::tsv(namesOf(recordOf({}, {})), recordsOf(plan));
}

std::string toml(const AppDedupePlan& plan) {
    return CommandLine::toml(Record{{"groups", std::ssize(plan.groups)},
                                    {"remove", std::ssize(plan.removableItems())},
                                    {"bytes", plan.removableBytes()},
                                    {"scannedAt", Text::isoDate(plan.scannedAt)}}) +
           "\n" + CommandLine::toml("items", recordsOf(plan));
}

std::string human(const AppDedupeRunResult& result) {
    std::string text;
    for (const auto& item : result.movedItems)
        if (item.trashedTo)
            text += fmt::format("{} → {}\n", Columns::oneLine(item.originalPath.native()),
                                Columns::oneLine(item.trashedTo->native()));
    return text;
}

std::string tsv(const AppDedupeRunResult& result) {
    return CommandLine::tsv(namesOf(recordOf({})), recordsOf(result));
}

std::string toml(const AppDedupeRunResult& result) {
    return CommandLine::toml("removed", recordsOf(result));
}

}  // namespace tarvik::CommandLine::DedupeTables
