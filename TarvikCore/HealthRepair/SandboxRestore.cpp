#include "HealthRepair/SandboxRestore.h"

#include "Copying/CopyPlace.h"
#include "Copying/CopyProof.h"
#include "Copying/FileCopier.h"
#include "Health/StashedLink.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

namespace tarvik::SandboxRestore {

namespace {

/// Whether a proved copy stands at `copy`. What is there of a bad one is removed.
/// @throws Failure when the copy tool cannot be started.
bool isCopied(const Host& host, const fs::path& from, const fs::path& copy) {
    try {
        FileCopier::runDitto(host, from, copy);
        if (!CopyProof::reasonAgainst(host, from, copy, CopyProof::Count::yes)) return true;
    } catch (const Failure& failure) {
        if (failure.domain() != "FileCopier") throw;  // That is the tool's own; the message has no room for its words.
    }
    ignoringFailure([&] { Files::removeItem(copy); });
    return false;
}

}  // namespace

std::string run(const Host& host, const fs::path& link, const fs::path& target) {
    const std::string name = link.filename();
    const std::string moment = Text::replacing(Text::isoDate(host.now()), ":", "");
    const fs::path stash = link.parent_path() / StashedLink::nameFor(name, moment);
    // The link stands until the copy can take its place: at no moment does an application find nothing there for long.
    CopyPlace copy(link);
    if (!isCopied(host, target, copy.path())) return fmt::format("ditto failed restoring {}; reverted.", name);
    try {
        Files::rename(link, stash);
        copy.arrive();
    } catch (const Failure&) {
        ignoringFailure([&] { Files::removeItem(copy.path()); });
        if (!Files::itemExists(link)) ignoringFailure([&] { Files::rename(stash, link); });
        throw;
    }
    ignoringFailure([&] { Files::flushVolume(link); });
    return fmt::format("Restored {} to internal disk. (External copy left at {}; stashed symlink at {}.)", name,
                       target.native(), stash.filename().native());
}

}  // namespace tarvik::SandboxRestore
