#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileDescriptor.h"
#include "Platform/Linux/WatchedTree.h"
#include "Platform/Machine/FileEvents.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

using std::chrono::steady_clock;
using namespace std::chrono_literals;

/// From one batch to the next.
constexpr auto latency = 250ms;
/// How long events gather before they are read: each look at them holds up those who make them. The system keeps 16,384
/// by default.
constexpr auto rest = 5ms;
/// How long a folder that has left may take to come back under another name.
constexpr auto returnTime = 250ms;
/// The coarsest times that a volume keeps, those of FAT.
constexpr std::time_t coarsestTime = 2;

std::timespec nowByWallClock() {
    std::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

class InotifyStream final : public FileEvents::Stream {
public:
    /// @throws std::system_error
    InotifyStream(const std::vector<fs::path>& roots, FileEvents::Listener listener)
        : m_listener(std::move(listener)),
          m_inotify(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
          m_inotifyError(errno),
          m_end(::eventfd(0, EFD_CLOEXEC)),
          m_completeUntil(nowByWallClock()),
          m_tree(m_inotify.get(), roots,
                 {.happened = [this](const std::string& path) { note(path); },
                  .missed = [this](const std::string& sentence) { miss(sentence); }}) {
        if (!m_inotify) throw std::system_error(m_inotifyError, std::generic_category());
        if (!m_end) throw std::system_error(errno, std::generic_category());
        m_tree.begin();
        m_thread = std::thread([this] { run(); });
    }

    ~InotifyStream() override {
        const std::uint64_t one = 1;
        while (::write(m_end.get(), &one, sizeof one) < 0 && errno == EINTR) {
        }
        m_thread.join();
    }

private:
    void run() noexcept {
        try {
            while (!isOver()) waitAndTell();
            waitAndTell();  // What the system has told of by the end.
            deliver();
        } catch (const std::exception& failure) {
            miss(fmt::format("The watching of files ended too early: {}.", failure.what()));
        }
    }

    bool isOver() const {
        pollfd end{m_end.get(), POLLIN, 0};
        return ::poll(&end, 1, 0) > 0;
    }

    void waitAndTell() {
        std::array<pollfd, 2> sources{{{m_end.get(), POLLIN, 0}, {m_inotify.get(), POLLIN, 0}}};
        ::poll(sources.data(), sources.size(), millisecondsToNextTask());
        if (sources[1].revents != 0) {
            readEvents();
            ::poll(sources.data(), 1, static_cast<int>(rest.count()));  // Cut short by the end.
        }
        const auto now = steady_clock::now();
        m_tree.forgetLeft(now - returnTime);
        if (now >= m_due) deliver();
    }

    int millisecondsToNextTask() const {
        const auto now = steady_clock::now();
        if (!m_paths.empty())
            return static_cast<int>(std::max(0ms, std::chrono::ceil<std::chrono::milliseconds>(m_due - now)).count());
        return m_tree.hasLeft() ? static_cast<int>(returnTime.count()) : -1;
    }

    /// Reads what the system has by now, and no more: who writes without end keeps no batch and no end waiting.
    void readEvents() {
        const std::timespec begin = nowByWallClock();
        bool isComplete = true;
        int waiting = 0;
        if (::ioctl(m_inotify.get(), FIONREAD, &waiting) != 0) return;
        while (waiting > 0) {
            const ssize_t length = ::read(m_inotify.get(), m_buffer.data(), m_buffer.size());
            if (length <= 0) break;
            waiting -= static_cast<int>(length);
            for (ssize_t offset = 0; offset < length;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(m_buffer.data() + offset);
                if ((event->mask & IN_Q_OVERFLOW) != 0) {
                    isComplete = false;
                } else {
                    m_tree.handle(*event);
                }
                offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
        if (!isComplete) {
            std::timespec since = m_completeUntil;
            since.tv_sec -= coarsestTime;
            m_tree.lookAgain(since);
        }
        m_completeUntil = begin;
    }

    void note(const std::string& path) {
        if (m_paths.empty() || m_paths.back() != path) m_paths.push_back(path);
    }

    void miss(const std::string& sentence) noexcept {
        ignoringFailure([&] { m_listener.missed(sentence); });
    }

    void deliver() {
        if (m_paths.empty()) return;
        ignoringFailure([&] { m_listener.happened(m_paths); });
        m_paths.clear();
        m_due = steady_clock::now() + latency;
    }

    const FileEvents::Listener m_listener;
    const FileDescriptor m_inotify;
    const int m_inotifyError;
    const FileDescriptor m_end;
    std::timespec m_completeUntil;
    steady_clock::time_point m_due{};
    std::vector<std::string> m_paths;
    alignas(inotify_event) std::array<char, std::size_t{64} * 1024> m_buffer;
    WatchedTree m_tree;
    std::thread m_thread;
};

class LinuxFileEvents final : public FileEvents {
public:
    std::unique_ptr<Stream> begin(const std::vector<fs::path>& roots, Listener listener) const override {
        if (roots.empty()) return nullptr;
        try {
            return std::make_unique<InotifyStream>(roots, listener);
        } catch (const std::exception& failure) {
            ignoringFailure([&] {
                listener.missed(fmt::format("Changes could not be watched as they happen: {}.", failure.what()));
            });
            return nullptr;
        }
    }
};

}  // namespace

std::shared_ptr<const FileEvents> makeSystemFileEvents() {
    return std::make_shared<LinuxFileEvents>();
}

}  // namespace tarvik
