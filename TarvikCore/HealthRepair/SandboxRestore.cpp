#include "HealthRepair/SandboxRestore.h"

#include "Copying/CopyPlace.h"
#include "Copying/CopyProof.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/StreamReader.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

namespace tarvik::SandboxRestore {

namespace {

/// Whether the copy tool has made a copy. @throws Failure when it cannot be started.
bool copies(const Host& host, const fs::path& from, const fs::path& to) {
    ChildProcess ditto = ChildProcess::start(host.tools.ditto, {from.native(), to.native()});
    StreamReader reader;  // Read so that the tool never waits for us.
    reader.add(ditto.standardError(), {});
    reader.add(ditto.standardOutput(), {});
    reader.readToEnd();
    return ditto.wait() == 0;
}

/// Makes a copy and puts it in its place. False when there is no good one, and then nothing is left of it.
/// @throws Failure when the copy tool cannot be started.
bool bringBack(const Host& host, const fs::path& target, const fs::path& place) {
    CopyPlace copy(place);
    if (!copies(host, target, copy.path()) ||
        CopyProof::reasonAgainst(host, target, copy.path(), CopyProof::Count::yes)) {
        ignoringFailure([&] { Files::removeItem(copy.path()); });
        return false;
    }
    try {
        copy.arrive();
    } catch (const Failure&) {  // Something has come to stand there.
        ignoringFailure([&] { Files::removeItem(copy.path()); });
        return false;
    }
    ignoringFailure([&] { Files::flushVolume(place); });
    return true;
}

}  // namespace

std::string run(const Host& host, const fs::path& link, const fs::path& target) {
    const std::string name = link.filename();
    const fs::path stash = link.parent_path() / fmt::format("{}.tarvik-stashed-{}", name,
                                                            Text::replacing(Text::isoDate(host.now()), ":", ""));
    Files::rename(link, stash);
    if (bringBack(host, target, link))
        return fmt::format("Restored {} to internal disk. (External copy left at {}; stashed symlink at {}.)", name,
                           target.native(), stash.filename().native());
    ignoringFailure([&] { Files::rename(stash, link); });
    return fmt::format("ditto failed restoring {}; reverted.", name);
}

}  // namespace tarvik::SandboxRestore
