// Shows a folder as a volume with a Mac's habits, for tests.
//
//     mac-volume FOLDER MOUNT-POINT [HABIT...]
//
// Both may be one folder, which then lies behind what it shows. It writes "ready" when the volume is mounted. After
// that it takes lines "HABIT on" and "HABIT off" and answers each with "ok", or with "?"; to "journal" it answers with
// what was done on the volume, a line each, before the "ok". It ends when its input does, or when the volume is
// unmounted.
//
// What differs from a Mac: names that differ in case are two files for the kernel. So a folder that is open by one of
// them has locks of its own, and is lost when it is renamed by the other one; and what is mounted in the volume is
// found only by the names by which it was mounted.
#include "Platform/Files/FileDescriptor.h"
#include "Program/Operations.h"
#include "Program/Volume.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace tarvik;
using namespace tarvik::macvolume;

[[noreturn]] void fail(const std::string& what) {
    std::cerr << "mac-volume: " << what << ": " << std::strerror(errno) << '\n';
    ::_exit(1);
}

/// False for what is no habit.
bool set(Volume& volume, const std::string& name, bool isOn) {
    const auto habit = Habits::named(name);
    if (habit) volume.set(*habit, isOn);
    return habit.has_value();
}

/// Takes orders until there will be none any more: whoever wanted the volume has ended.
void obey(Volume& volume) {
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "journal") {
            for (const std::string& done : volume.journal().lines()) std::cout << done << '\n';
            std::cout << "ok" << std::endl;
            continue;
        }
        const auto space = line.find(' ');
        const std::string order = space == std::string::npos ? "" : line.substr(space + 1);
        const bool isOrder = order == "on" || order == "off";
        std::cout << (isOrder && set(volume, line.substr(0, space), order == "on") ? "ok" : "?") << std::endl;
    }
    ::_exit(0);
}

struct End {
    void operator()(fuse* session) const { fuse_destroy(session); }
};

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "Usage: mac-volume FOLDER MOUNT-POINT [HABIT...]\n";
        return 2;
    }
    ::umask(0);
    // Before the volume is mounted on it.
    FileDescriptor folder(::open(argv[1], O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) fail(argv[1]);
    Volume volume(std::move(folder));
    for (int index = 3; index < argc; ++index) {
        if (set(volume, argv[index], true)) continue;
        std::cerr << "mac-volume: no habit: " << argv[index] << '\n';
        return 2;
    }

    std::vector<std::string> words = {"mac-volume", "-o", "allow_other,default_permissions,subtype=mac-volume"};
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    fuse_args arguments = FUSE_ARGS_INIT(static_cast<int>(pointers.size()), pointers.data());
    const auto operations = Operations::all();
    const std::unique_ptr<fuse, End> session(fuse_new(&arguments, &operations, sizeof operations, &volume));
    if (!session || fuse_mount(session.get(), argv[2]) != 0) fail("cannot mount on " + std::string(argv[2]));
    std::cout << "ready" << std::endl;
    std::thread(obey, std::ref(volume)).detach();
    const int status = fuse_loop_mt(session.get(), 0);
    ::_exit(status == 0 ? 0 : 1);  // The other thread still reads.
}
