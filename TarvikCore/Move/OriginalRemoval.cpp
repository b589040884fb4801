#include "Move/OriginalRemoval.h"

#include "Platform/Files.h"
#include "Platform/Identifier.h"

#include <fmt/format.h>

namespace tarvik::OriginalRemoval {

namespace {

/// Runs a step on the original under whatever name; a failure speaks of the original.
template <typename Step>
void onBehalfOf(const fs::path& original, const Step& step) {
    try {
        step();
    } catch (const FileError& error) {
        throw FileError("remove", original, error.code());
    }
}

}  // namespace

std::optional<std::string> remove(const Host& host, const fs::path& original, const ChangeWatch::Mark& start) {
    if (auto obstacle = Files::removalObstacle(original)) throw *std::move(obstacle);
    const fs::path aside = original.parent_path() / (".tarvik-removing-" + newIdentifier());
    onBehalfOf(original, [&] { Files::rename(original, aside); });
    try {
        if (const auto changed = ChangeWatch::changedBelow(host, aside, start)) {
            Files::rename(aside, original);
            const fs::path item = changed->empty() ? original.filename() : original.filename() / *changed;
            return fmt::format("{} was changed while it was copied.", item.native());
        }
        onBehalfOf(original, [&] { Files::removeItem(aside); });
    } catch (...) {
        ignoringFailure([&] { Files::rename(aside, original); });
        throw;
    }
    return std::nullopt;
}

}  // namespace tarvik::OriginalRemoval
