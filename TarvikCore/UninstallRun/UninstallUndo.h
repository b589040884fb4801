#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCategory.h"
#include "UninstallRun/AppUninstallReporter.h"
#include "UninstallRun/AppUninstallSession.h"

#include <cstdint>
#include <string>
#include <vector>

/// Takes an uninstall back: brings its items from the Trash, or from where they were set aside, to their old places,
/// and never over something that stands there.
///
/// The journal beside a record tells what each item is, and only that comes back. Of a record without a journal, one
/// that was damaged or written by hand, is believed where an item stood and where in the Trash it lies, as far as the
/// place is one that uninstalls take from, the folder is a Trash and the name there is one that a Trash gives it.
namespace tarvik::UninstallUndo {

/// How it stands with one item of a past uninstall. The disk alone tells: records are not changed.
struct Item {
    enum class State {
        waiting,  ///< it can come back
        back,     ///< it stands at its old place
        stuck,    ///< it cannot come back, `reason` says why
    };
    fs::path originalPath;
    UninstallCategory category = UninstallCategory::executable;
    std::int64_t sizeBytes = 0;
    State state = State::stuck;
    /// Where it waits.
    fs::path place;
    /// One sentence.
    std::string reason;

    bool operator==(const Item&) const = default;
};

/// One for each item of the session that had gone, in its order. A few status calls an item, but none into a volume
/// that the host has noted as silent: what is there is stuck. Blocks; any thread; never fails.
std::vector<Item> look(const Host& host, const AppUninstallSession& session);

/// Brings back what can come, the last one that went first, and tells how it stands with each item afterwards. What
/// fails stays where it is, with the reason, and stops no other. One that is stopped ends before its next item.
/// Receipts do not come back. Asks for silent volumes itself. Blocks; any thread.
/// @throws Failure when the session is under way or is being taken back by another run.
std::vector<Item> putBack(const Host& host, const AppUninstallSession& session, const AppUninstallReporter& reporter,
                          const Cancellation& stop = {});

/// The sentence for the user at the end of `putBack`, which knows how it stood before: "Put back 3 items." Pure.
std::string summary(const std::vector<Item>& before, const std::vector<Item>& after);

}  // namespace tarvik::UninstallUndo
