#include "Support/RealVolume.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace tarvik::test {

namespace {

/// Runs a tool to its end. False when it failed.
bool run(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, words.front().c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) return false;
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    return status == 0;
}

/// Makes an image of the given format and attaches it on a new folder in `parent`. This system has no memory file
/// system and no ext4: images of its own formats take their places.
fs::path attachImage(const fs::path& parent, std::int64_t sizeBytes, const std::string& format,
                     const std::string& label) {
    std::string path = (fs::canonical(parent) / "volume-XXXXXX").native();
    if (!::mkdtemp(path.data())) throw std::runtime_error("no folder for a volume in " + parent.native());
    const std::string image = path + ".dmg";
    const std::string size = std::to_string(sizeBytes / 512) + "s";
    const bool isAttached =
        run({"/usr/bin/hdiutil", "create", "-size", size, "-fs", format, "-volname", label, image}) &&
        run({"/usr/bin/hdiutil", "attach", image, "-nobrowse", "-owners", "on", "-mountpoint", path});
    ::unlink(image.c_str());
    if (!isAttached) throw std::runtime_error("cannot attach a volume in " + parent.native());
    return path;
}

}  // namespace

void RealVolume::prepareProcess() {}

std::optional<std::string> RealVolume::unavailableReason(Kind) {
    if (::access("/usr/bin/hdiutil", X_OK) != 0) return "There is no hdiutil to make volumes with.";
    return std::nullopt;
}

RealVolume RealVolume::ext4(const fs::path& parent, std::int64_t sizeBytes, std::string_view label) {
    return RealVolume(attachImage(parent, sizeBytes, "HFS+J", label.empty() ? "untitled" : std::string(label)));
}

RealVolume RealVolume::memory(const fs::path& parent, std::int64_t sizeBytes) {
    return RealVolume(attachImage(parent, sizeBytes, "HFS+", "untitled"));
}

std::optional<RealVolume> RealVolume::ofKind(const fs::path&, std::string_view, std::string_view) {
    return std::nullopt;
}

std::optional<RealVolume> RealVolume::viewOf(const fs::path&, const fs::path&) {
    return std::nullopt;
}

void RealVolume::remountReadOnly() {
    if (!run({"/sbin/mount", "-u", "-o", "rdonly", m_path.native()}))
        throw std::runtime_error("cannot make read-only " + m_path.native());
}

bool RealVolume::eject() {
    if (!run({"/usr/bin/hdiutil", "detach", m_path.native()})) return false;
    ::rmdir(m_path.c_str());
    m_path.clear();
    return true;
}

std::string RealVolume::makingReadOnly(const fs::path& place) {
    return "/sbin/mount -u -o rdonly '" + place.native() + "'";
}

std::string RealVolume::unplugging(const fs::path& place) {
    return "/usr/bin/hdiutil detach '" + place.native() + "' -force >/dev/null";
}

std::string RealVolume::plugging(const fs::path& place, std::int64_t sizeBytes) {
    const std::string image = "'" + place.native() + ".dmg'";
    return "{ /usr/bin/hdiutil create -size " + std::to_string(sizeBytes / 512) + "s -fs HFS+ -volname untitled " +
           image + " && /usr/bin/hdiutil attach " + image + " -nobrowse -owners on -mountpoint '" + place.native() +
           "' && rm -f " + image + "; } >/dev/null";
}

void RealVolume::detach() {
    if (m_path.empty() || !run({"/usr/bin/hdiutil", "detach", m_path.native(), "-force"})) return;
    ::rmdir(m_path.c_str());
}

}  // namespace tarvik::test
