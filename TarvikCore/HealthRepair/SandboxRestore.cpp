#include "HealthRepair/SandboxRestore.h"

#include "Copying/CopyPlace.h"
#include "Copying/CopyProof.h"
#include "Copying/FileCopier.h"
#include "Copying/HiddenName.h"
#include "Copying/Leftovers.h"
#include "Health/StashedLink.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"
#include "Records/HealthManifest.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>

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

/// Lets the complete copy and the link take each other's name, so that an application finds one of them at every
/// moment, and then gives the link its new name. @throws FileError, and then the link stands where it stood.
void takePlace(CopyPlace& copy, const fs::path& stash) {
    const fs::path& link = copy.goal();
    const auto exchange = [&] { Files::exchange(copy.path(), link, HiddenName::forExchangeOf(link)); };
    bool isHidden = true;
    try {
        copy.leaveFolder();
        exchange();
        isHidden = false;
        if (!Files::isSymbolicLink(copy.path())) throw FileError("replace", link, EEXIST);
        Files::rename(copy.path(), stash);
    } catch (const Failure&) {
        if (!isHidden)
            ignoringFailure([&] {
                exchange();
                isHidden = true;
            });
        if (isHidden) ignoringFailure([&] { Files::removeItem(copy.path()); });
        HiddenName::rethrowInOwnName(copy.path(), link);
    }
}

bool isRemembered(const Host& host, const fs::path& source) {
    const auto entries = HealthManifest::load(host);
    return std::any_of(entries.begin(), entries.end(),
                       [&](const HealthManifestEntry& entry) { return entry.sourcePath == source; });
}

}  // namespace

std::string run(const Host& host, const fs::path& link, const fs::path& target) {
    const std::string name = link.filename();
    const std::string moment = Text::replacing(Text::isoDate(host.now()), ":", "");
    const fs::path stash = link.parent_path() / StashedLink::nameFor(name, moment);
    Leftovers::sweep(host, link.parent_path());
    CopyPlace copy(link);
    if (!isCopied(host, target, copy.path())) return fmt::format("ditto failed restoring {}; reverted.", name);
    takePlace(copy, stash);
    ignoringFailure([&] { Files::flushVolume(link); });
    if (isRemembered(host, link)) HealthManifest::forget(host, link);
    return fmt::format("Restored {} to internal disk. (External copy left at {}; stashed symlink at {}.)", name,
                       target.native(), stash.filename().native());
}

}  // namespace tarvik::SandboxRestore
