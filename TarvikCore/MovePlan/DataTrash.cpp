#include "MovePlan/DataTrash.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <optional>

namespace tarvik::DataTrash {

namespace {

class Refused : public Failure {
public:
    Refused(const fs::path& item, std::string_view reason)
        : Failure("DataTrash", 0, fmt::format("{} {}", item.filename().native(), reason)) {}
};

/// Whether the way from `root` down to the folder that holds `item` meets a link.
bool leadsThroughLink(const fs::path& item, const fs::path& root) {
    for (fs::path place = item; place != root;) {
        place = place.parent_path();
        if (Files::isSymbolicLink(place)) return true;
    }
    return false;
}

/// The roots are standardized.
bool isAllowed(const fs::path& item, const std::vector<fs::path>& roots) {
    return std::any_of(roots.begin(), roots.end(), [&](const fs::path& root) {
        return Files::isAtOrBelow(item, root) && !leadsThroughLink(item, root);
    });
}

/// Where the item stands with the links above it resolved: one place has one such path.
fs::path placeOf(const fs::path& item) {
    const auto parent = Files::resolved(item.parent_path());
    return parent ? *parent / item.filename() : item;
}

/// The items by their places, each once, without those that lie in another one.
std::vector<fs::path> eachPlaceOnce(const std::vector<fs::path>& items) {
    std::vector<fs::path> places;
    std::vector<fs::path> kept;
    places.reserve(items.size());
    for (const fs::path& item : items) places.push_back(placeOf(item));
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t one, std::size_t other) { return places[one] < places[other]; });
    // All that lies in a folder follows it in the order of paths, before anything else does.
    std::vector<std::size_t> positions;
    for (const std::size_t position : order)
        if (positions.empty() || !Files::isAtOrBelow(places[position], places[positions.back()]))
            positions.push_back(position);
    std::sort(positions.begin(), positions.end());
    kept.reserve(positions.size());
    for (const std::size_t position : positions) kept.push_back(items[position]);
    return kept;
}

}  // namespace

bool isLinkToDrive(const Host& host, const fs::path& item) {
    const auto text = Files::linkText(item);
    if (!text) return false;
    const fs::path target = Files::standardized(item.parent_path() / *text);
    return Files::isAtOrBelow(target, SystemFolders::volumes(host)) ||
           std::find(target.begin(), target.end(), AppStorageNames::externalRoot) != target.end();
}

Dialog confirm(const std::string& appName, std::int64_t count, std::int64_t bytes) {
    return {fmt::format("Move {} to Trash?", Text::counted(count, "item")),
            fmt::format("Total {}. {} may lose settings or documents without {}.", SizeCalculator::format(bytes),
                        appName, count == 1 ? "it" : "them"),
            {"Move to Trash", "Cancel"}};
}

Outcome moveToTrash(const Host& host, const std::vector<fs::path>& dataPaths, const std::vector<fs::path>& items) {
    std::vector<fs::path> allowed;
    Outcome outcome;
    const auto attempt = [&](const auto& step) {
        try {
            step();
        } catch (const std::exception& failure) {
            outcome.failures.emplace_back(failure.what());
        }
    };
    std::vector<fs::path> roots;
    for (const fs::path& path : dataPaths) attempt([&] { roots.push_back(Files::standardized(path)); });
    for (const fs::path& named : items) {
        attempt([&] {
            const fs::path item = Files::standardized(named);
            if (!isAllowed(item, roots)) throw Refused(item, "is none of the application's own files");
            if (isLinkToDrive(host, item)) throw Refused(item, "is a link to a drive: use Move Back");
            allowed.push_back(item);
        });
    }
    for (const fs::path& item : eachPlaceOnce(allowed)) {
        attempt([&] {
            host.trash->moveToTrash(item);
            ++outcome.movedCount;
        });
    }
    return outcome;
}

std::string movedText(const Outcome& outcome) {
    if (outcome.movedCount == 0) return {};
    return fmt::format("Moved {} to Trash.", Text::counted(outcome.movedCount, "item"));
}

std::string failureText(const Outcome& outcome) {
    if (outcome.failures.empty()) return {};
    return fmt::format("{} could not be moved to Trash: {}.", Text::counted(std::ssize(outcome.failures), "item"),
                       outcome.failures.front());
}

}  // namespace tarvik::DataTrash
