#include "Installers/Opening/DiskImageMounter.h"

#include "Installers/Opening/DiskImageNote.h"
#include "Installers/Opening/DiskImageTool.h"
#include "Installers/Opening/OpenedLeftovers.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Processes/CommandRunner.h"

#include <string>
#include <unistd.h>

namespace tarvik::DiskImageMounter {

namespace {

constexpr const char* domain = "hdiutil";
constexpr int unreadableAnswer = 1;

}  // namespace

DiskImageMount attach(const Host& host, const fs::path& image) {
    OpenedLeftovers::sweep(host);
    DiskImageNote note = DiskImageNote::make(host, image);
    bool isAnswerUnread = false;
    try {
        const auto result = CommandRunner::runWritingTo(note.file(), host.tools.hdiutil,
                                                        {"attach", image.native(), "-plist", "-nobrowse", "-readonly"});
        if (!result.succeeded()) throw Failure(domain, result.status, result.stderr);
        isAnswerUnread = true;
        DiskImageMount mount{.imagePath = image, .mountPoints = {}, .devicePaths = {}};
        const std::string answer = note.answer();
        isAnswerUnread = false;
        if (!DiskImageTool::readAnswer(answer, mount))
            throw Failure(domain, unreadableAnswer, "The answer of hdiutil could not be read.");
        mount.isBorrowed = note.wasThere(mount);
        if (mount.isBorrowed) {
            note.remove();
        } else {
            note.keepFor(mount);
        }
        return mount;
    } catch (...) {
        // An answer that could not be read from the disk now may be at the next start.
        if (!isAnswerUnread) note.remove();
        throw;
    }
}

void detach(const Host& host, const DiskImageMount& mount) {
    if (mount.isBorrowed) return;
    if (DiskImageTool::detachOne(host, mount) && !mount.note.empty()) ::unlink(mount.note.c_str());
}

}  // namespace tarvik::DiskImageMounter
