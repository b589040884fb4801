#include "Support/RealVolume.h"

#include "Platform/Files/FileDescriptor.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <linux/capability.h>
#include <linux/loop.h>
#include <sched.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

/// Set by `prepareProcess`, before the first test.
std::optional<std::string> reasonAgainstAny = "The test program did not prepare for volumes of its own.";
std::optional<std::string> reasonAgainstDevices;

std::string errorText() {
    return std::generic_category().message(errno);
}

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + errorText());
}

bool writeFile(const char* path, const std::string& text) {
    std::ofstream file(path);
    file << text;
    return bool(file.flush());
}

/// Keeps the right to mount, which an own user namespace gave, and none of the others: a test must meet the file
/// permissions that its user meets.
bool keepOnlyMountRight() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct rights[2]{};
    rights[0].effective = rights[0].permitted = 1U << CAP_SYS_ADMIN;
    return ::syscall(SYS_capset, &header, rights) == 0;
}

/// Without being root: mounts in a user namespace, where this user stays who it is.
bool enterUserNamespace() {
    const auto user = ::getuid();
    const auto group = ::getgid();
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", fmt::format("{0} {0} 1", user)) &&
           writeFile("/proc/self/gid_map", fmt::format("{0} {0} 1", group)) && keepOnlyMountRight();
}

fs::path newFolder(const fs::path& parent) {
    std::string name = (fs::canonical(parent) / "volume-XXXXXX").native();
    if (!::mkdtemp(name.data())) fail("no folder for a volume in " + parent.native());
    return name;
}

void format(const std::string& image, std::string_view label) {
    std::vector<std::string> words = {"mkfs.ext4",        "-q", "-F", "-E", "nodiscard,lazy_journal_init=1", "-L",
                                      std::string(label), image};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::string path = "PATH=/usr/sbin:/sbin:/usr/bin:/bin";
    char* environment[] = {path.data(), nullptr};

    const char* program = ::access("/usr/sbin/mkfs.ext4", X_OK) == 0 ? "/usr/sbin/mkfs.ext4" : "/sbin/mkfs.ext4";
    pid_t child = 0;
    if (const int error = ::posix_spawn(&child, program, nullptr, nullptr, arguments.data(), environment); error != 0)
        throw std::system_error(error, std::generic_category(), program);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    if (status != 0) throw std::runtime_error("mkfs.ext4 failed for " + image);
}

/// A formatted image that no name leads to any more.
FileDescriptor makeImage(const fs::path& parent, std::int64_t sizeBytes, std::string_view label) {
    std::string name = (parent / "image-XXXXXX").native();
    FileDescriptor image(::mkostemp(name.data(), O_CLOEXEC));
    if (!image || ::ftruncate(image.get(), sizeBytes) != 0) fail("no image in " + parent.native());
    try {
        format(name, label);
    } catch (...) {
        ::unlink(name.c_str());
        throw;
    }
    ::unlink(name.c_str());
    return image;
}

/// Ties the image to a free loop device, which the system frees when its last user has gone.
FileDescriptor attach(const FileDescriptor& image, std::string& devicePath) {
    const FileDescriptor control(::open("/dev/loop-control", O_RDWR | O_CLOEXEC));
    if (!control) fail("no loop devices");
    while (true) {
        const int number = ::ioctl(control.get(), LOOP_CTL_GET_FREE);
        if (number < 0) fail("no free loop device");
        devicePath = fmt::format("/dev/loop{}", number);
        FileDescriptor device(::open(devicePath.c_str(), O_RDWR | O_CLOEXEC));
        if (!device) fail("cannot open " + devicePath);
        loop_config setup{};
        setup.fd = static_cast<unsigned>(image.get());
        setup.info.lo_flags = LO_FLAGS_AUTOCLEAR;
        if (::ioctl(device.get(), LOOP_CONFIGURE, &setup) == 0) return device;
        if (errno != EBUSY) fail("cannot set up " + devicePath);  // Busy: another test program was faster.
    }
}

/// Mounts on `path`, or takes that folder away again and leaves the reason in errno.
bool isMounted(const fs::path& path, const std::string& source, const std::string& kind, unsigned long flags,
               const std::string& options = {}) {
    if (::mount(source.c_str(), path.c_str(), kind.c_str(), flags, options.c_str()) == 0) return true;
    const int error = errno;
    ::rmdir(path.c_str());
    errno = error;
    return false;
}

}  // namespace

void RealVolume::prepareProcess() {
    const bool isRoot = ::geteuid() == 0;
    if (!(isRoot ? ::unshare(CLONE_NEWNS) == 0 : enterUserNamespace())) {
        reasonAgainstAny = "This system does not let the tests mount volumes of their own: " + errorText();
        return;
    }
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        reasonAgainstAny = "This system does not let the tests keep their mounts to themselves: " + errorText();
        return;
    }
    reasonAgainstAny.reset();
    if (::access("/dev/loop-control", R_OK | W_OK) != 0)
        reasonAgainstDevices = "This system does not let the tests use loop devices: " + errorText();
    else if (!isRoot)
        reasonAgainstDevices = "Only root may mount a file system from a loop device.";
}

std::optional<std::string> RealVolume::unavailableReason(Kind kind) {
    if (reasonAgainstAny || kind == Kind::memory) return reasonAgainstAny;
    return reasonAgainstDevices;
}

RealVolume RealVolume::ext4(const fs::path& parent, std::int64_t sizeBytes, std::string_view label) {
    const FileDescriptor image = makeImage(parent, sizeBytes, label);
    std::string device;
    const FileDescriptor attached = attach(image, device);
    const fs::path path = newFolder(parent);
    if (::mount(device.c_str(), path.c_str(), "ext4", 0, "noinit_itable") != 0) fail("cannot mount " + device);
    return RealVolume(path);
}

RealVolume RealVolume::memory(const fs::path& parent, std::int64_t sizeBytes) {
    auto volume = ofKind(parent, "tmpfs", fmt::format("size={},mode=0755", sizeBytes));
    if (!volume) fail("cannot mount a memory file system");
    return std::move(*volume);
}

std::optional<RealVolume> RealVolume::ofKind(const fs::path& parent, std::string_view kind, std::string_view options) {
    const fs::path path = newFolder(parent);
    if (!isMounted(path, std::string(kind), std::string(kind), 0, std::string(options))) return std::nullopt;
    return RealVolume(path);
}

std::optional<RealVolume> RealVolume::viewOf(const fs::path& folder, const fs::path& parent) {
    const fs::path path = newFolder(parent);
    if (!isMounted(path, folder, "none", MS_BIND)) fail("cannot show " + folder.native() + " twice");
    return RealVolume(path);
}

void RealVolume::remountReadOnly() {
    if (::mount(nullptr, m_path.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
        fail("cannot make read-only " + m_path.native());
}

bool RealVolume::eject() {
    if (::umount2(m_path.c_str(), 0) != 0) return false;
    ::rmdir(m_path.c_str());
    m_path.clear();
    return true;
}

std::string RealVolume::makingReadOnly(const fs::path& place) {
    return "mount -o remount,ro '" + place.native() + "'";
}

std::string RealVolume::unplugging(const fs::path& place) {
    return "umount -l '" + place.native() + "'";
}

std::string RealVolume::plugging(const fs::path& place, std::int64_t sizeBytes) {
    return fmt::format("mount -t tmpfs -o size={} none '{}'", sizeBytes, place.native());
}

void RealVolume::detach() {
    if (m_path.empty() || ::umount2(m_path.c_str(), MNT_DETACH) != 0) return;
    ::rmdir(m_path.c_str());
}

}  // namespace tarvik::test
