#include "Copying/Disposal.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/ClashNames.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"

#include <climits>

namespace tarvik::Disposal {

Outcome dispose(const Host& host, const fs::path& item, const fs::path& place, const std::string& suffix) noexcept {
    Outcome outcome{Outcome::End::stayed, {}};
    ignoringFailure([&] { outcome = {Outcome::End::trashed, host.trash->moveToTrash(item)}; });
    if (outcome.end == Outcome::End::trashed) return outcome;
    ignoringFailure([&] {
        const fs::path folder = place.parent_path() / ".TarvikTrash";
        const fs::path goal = folder / ClashNames::suffixed(place.filename().native(), suffix, NAME_MAX);
        Files::createFolder(folder);
        Files::rename(item, goal);
        outcome = {Outcome::End::setAside, goal};
    });
    if (outcome.end == Outcome::End::stayed) ignoringFailure([&] { outcome.place = item; });
    return outcome;
}

}  // namespace tarvik::Disposal
