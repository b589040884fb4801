#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/Files.h"
#include "hdiutil/Arguments.h"
#include "hdiutil/Attach.h"
#include "hdiutil/Attachments.h"
#include "hdiutil/Tool.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

// Attaches and detaches disk images as a Mac's hdiutil(1) does, on the machine in the folder that the environment
// variable TARVIK_ROOT names; without one it refuses.
//
//     hdiutil attach IMAGE [-plist] [-nobrowse] [-readonly] [-quiet]
//     hdiutil detach MOUNT_POINT|DEVICE [-quiet]
//
// The words on standard error and the status 1 are those of published sessions, since the manual page tells neither.
//
// What differs, and why nothing may count on it:
// - Nothing is mounted. The files of the image are copied to a new folder in `Volumes` of the machine, by what 7-Zip's
//   program reads of them, and go again when the image is detached. So there must be room for them, which is looked at
//   before; devices are only names. Mount points in answers begin with the machine's folder, as other tools need them.
// - Nothing can be put into the folder of a volume, or taken out of it, by an ordinary user: it bears no permission to
//   write. What lies deeper keeps the permissions that it has on the image, because copies take them along; it could
//   be written to, where a Mac refuses. Nobody may try. For root, permissions do not count at all.
// - Owners are not kept, as a Mac ignores them too on images that are not told otherwise. Set-user-id and the like, and
//   devices, which a Mac shows, are not there.
// - On APFS each of several names of a file becomes a file of its own.
// - An HFS Plus volume on which files have several names is refused: 7-Zip takes such names for empty files.
// - Extended attributes and resource forks are kept where the file system of the machine keeps such attributes; on
//   Linux their names begin with "user.". Of names, a line break and a colon become "_".
// - It knows compressed images, those of a disk as it is, and discs; HFS, HFS Plus and APFS volumes, and ISO 9660. Of a
//   disc that is also a Mac's disk, the Mac's volumes are taken. Other volumes (FAT, NTFS, UDF), images in several
//   files, sparse ones and those of a virtual machine are not mountable.
// - A container with several APFS volumes is refused: 7-Zip does not tell apart which items are whose.
// - Of images whose pieces are in LZFSE, 7-Zip takes those for damaged in which a block is stored as it is.
// - An encrypted image asks for no password, one with a licence shows none: both fail at once.
// - Volumes on which something is open are not detached, with status 16, as by a Mac's tool; of programs of
//   others, and on a Mac, that is not known.
// - No other command and no other option is understood.

namespace {

using tarvik::hdiutil::Arguments;
namespace fs = tarvik::fs;

constexpr int failed = 1;
constexpr int busy = 16;  // EBUSY

/// Written for people; the program is asked for its status.
void complain(const Arguments& arguments, const std::string& what) {
    if (!arguments.isQuiet) std::fprintf(stderr, "hdiutil: %s\n", what.c_str());
}

fs::path machine() {
    const char* root = std::getenv("TARVIK_ROOT");
    const auto resolved = root ? tarvik::Files::resolved(root) : std::nullopt;
    if (!resolved || *resolved == "/" || !tarvik::Files::isFolder(*resolved))
        throw tarvik::Failure("hdiutil", failed, "TARVIK_ROOT names no machine in a folder");
    return *resolved;
}

int attach(const Arguments& arguments) {
    using namespace tarvik::hdiutil;
    Tool::letSignalsCancel();
    try {
        const Attachment attachment = Attach::run(machine(), arguments.target);
        const std::string answer =
            arguments.wantsList ? AttachmentRecord::answer(attachment) : AttachmentRecord::lines(attachment);
        if (!arguments.isQuiet) std::fputs(answer.c_str(), stdout);
        return 0;
    } catch (const std::exception& failure) {
        complain(arguments, std::string("attach failed - ") + failure.what());
        return failed;
    }
}

/// Gives programs a moment to end that are about to.
bool comesToRest(const tarvik::hdiutil::Attachments& attachments, int number) {
    constexpr int looks = 10;
    for (int look = 0; look < looks; ++look) {
        if (!attachments.isBusy(number)) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

int detach(const Arguments& arguments) {
    try {
        tarvik::hdiutil::Attachments attachments(machine());
        const auto number = attachments.numberOf(arguments.target);
        if (!number) throw tarvik::Failure("hdiutil", failed, "No such file or directory");
        if (!comesToRest(attachments, *number)) {
            complain(arguments, "couldn't unmount \"disk" + std::to_string(*number) + "\" - Resource busy");
            return busy;
        }
        attachments.end(*number);
        if (!arguments.isQuiet) std::printf("\"disk%d\" ejected.\n", *number);
        return 0;
    } catch (const std::exception& failure) {
        complain(arguments, std::string("detach failed - ") + failure.what());
        return failed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const Arguments arguments = Arguments::of({argv + 1, argv + argc});
    switch (arguments.verb) {
        case Arguments::Verb::attach:
            return attach(arguments);
        case Arguments::Verb::detach:
            return detach(arguments);
        case Arguments::Verb::none:
            break;
    }
    std::fputs(arguments.usage().c_str(), stderr);
    return failed;
}
