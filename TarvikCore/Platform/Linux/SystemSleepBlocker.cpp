#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/SleepBlocker.h"

#include <fcntl.h>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <utility>

namespace tarvik {

namespace {

/// A login manager that does not answer must not keep a copy waiting.
constexpr std::uint64_t longestWaitMicroseconds = 1'000'000;

struct Unref {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

/// The login manager's lock against sleep (org.freedesktop.login1.Manager, Inhibit): a descriptor, which the system
/// closes when the process ends, however it does.
FileDescriptor inhibit(const std::string& reason) {
    sd_bus* opened = nullptr;
    if (sd_bus_open_system(&opened) < 0) return {};
    const std::unique_ptr<sd_bus, Unref> bus(opened);
    sd_bus_set_method_call_timeout(bus.get(), longestWaitMicroseconds);
    sd_bus_message* answer = nullptr;
    const int result = sd_bus_call_method(bus.get(), "org.freedesktop.login1", "/org/freedesktop/login1",
                                          "org.freedesktop.login1.Manager", "Inhibit", nullptr, &answer, "ssss",
                                          "idle:sleep", "Tarvik", reason.c_str(), "block");
    const std::unique_ptr<sd_bus_message, Unref> message(answer);
    int lock = -1;
    if (result < 0 || sd_bus_message_read(message.get(), "h", &lock) < 0) return {};
    return FileDescriptor(::fcntl(lock, F_DUPFD_CLOEXEC, 0));  // The message closes its own.
}

class LinuxSleepHold final : public SleepBlocker::Hold {
public:
    explicit LinuxSleepHold(FileDescriptor lock) : m_lock(std::move(lock)) {}

private:
    FileDescriptor m_lock;
};

class LinuxSleepBlocker final : public SleepBlocker {
public:
    std::unique_ptr<Hold> hold(const std::string& reason) const override {
        FileDescriptor lock = inhibit(reason);
        return lock ? std::make_unique<LinuxSleepHold>(std::move(lock)) : nullptr;
    }
};

}  // namespace

std::shared_ptr<const SleepBlocker> makeSystemSleepBlocker() {
    return std::make_shared<LinuxSleepBlocker>();
}

}  // namespace tarvik
