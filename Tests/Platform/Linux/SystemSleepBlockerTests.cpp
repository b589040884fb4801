#include "Platform/Files/FileDescriptor.h"
#include "Platform/Machine/SleepBlocker.h"
#include "Support/EnvironmentVariable.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

/// A system bus with a login manager that serves one caller.
class LoginManager {
public:
    explicit LoginManager(const fs::path& socket, bool isWilling = true) : m_isWilling(isWilling) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, socket.c_str(), sizeof address.sun_path - 1);
        m_listening = FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (::bind(m_listening.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(m_listening.get(), 1) != 0)
            throw std::runtime_error("no socket");
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        m_watched = FileDescriptor(ends[0]);
        m_lock = FileDescriptor(ends[1]);
        m_thread = std::thread([this] { serve(); });
    }
    ~LoginManager() { m_thread.join(); }

    /// Waits until the caller has left the bus. @returns what it asked for.
    std::vector<std::string> words() {
        m_thread.join();
        m_thread = std::thread([] {});
        return m_words;
    }
    bool isLocked() const {
        pollfd end{m_watched.get(), POLLIN, 0};
        ::poll(&end, 1, 0);
        return (end.revents & POLLHUP) == 0;
    }

private:
    void serve() {
        FileDescriptor caller(::accept4(m_listening.get(), nullptr, nullptr, SOCK_CLOEXEC));
        sd_bus* bus = nullptr;
        sd_bus_new(&bus);
        sd_bus_set_fd(bus, caller.get(), caller.get());
        caller.release();
        sd_bus_set_server(bus, 1, sd_id128_t{});
        sd_bus_set_anonymous(bus, 1);
        sd_bus_negotiate_fds(bus, 1);
        sd_bus_add_filter(bus, nullptr, answer, this);
        sd_bus_start(bus);
        for (int result = 0; result >= 0;) {
            result = sd_bus_process(bus, nullptr);
            if (result == 0) result = sd_bus_wait(bus, UINT64_MAX);
        }
        sd_bus_unref(bus);
        m_lock.close();  // Only the caller's own is left.
    }

    static int answer(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& manager = *static_cast<LoginManager*>(self);
        if (sd_bus_message_is_method_call(message, "org.freedesktop.DBus", "Hello") > 0)
            return sd_bus_reply_method_return(message, "s", ":1.1");
        if (sd_bus_message_is_method_call(message, "org.freedesktop.login1.Manager", "Inhibit") <= 0) return 0;
        std::array<const char*, 4> words{};
        sd_bus_message_read(message, "ssss", &words[0], &words[1], &words[2], &words[3]);
        manager.m_words.assign(words.begin(), words.end());
        if (!manager.m_isWilling)
            return sd_bus_reply_method_errorf(message, SD_BUS_ERROR_ACCESS_DENIED, "Permission denied");
        return sd_bus_reply_method_return(message, "h", manager.m_lock.get());
    }

    const bool m_isWilling;
    FileDescriptor m_listening, m_watched, m_lock;
    std::vector<std::string> m_words;
    std::thread m_thread;
};

class SystemSleepBlockers : public testing::Test {
protected:
    const TemporaryFolder folder;
    const fs::path socket = folder / "bus";
    const EnvironmentVariable address{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + socket.native()};
    const std::shared_ptr<const SleepBlocker> blocker = makeSystemSleepBlocker();
};

}  // namespace

TEST_F(SystemSleepBlockers, HoldALockUntilTheyEnd) {
    LoginManager manager(socket);
    auto hold = blocker->hold("Items are being moved");
    ASSERT_TRUE(hold);
    EXPECT_THAT(manager.words(), testing::ElementsAre("idle:sleep", "Tarvik", "Items are being moved", "block"));
    EXPECT_TRUE(manager.isLocked());
    hold.reset();
    EXPECT_FALSE(manager.isLocked());
}

TEST_F(SystemSleepBlockers, HoldNothingWhenTheyMayNot) {
    const LoginManager manager(socket, false);
    EXPECT_FALSE(blocker->hold("Items are being moved"));
}

TEST_F(SystemSleepBlockers, HoldNothingWhereThereIsNoLoginManager) {
    EXPECT_FALSE(blocker->hold("Items are being moved"));
}

}  // namespace tarvik::test
