#include "Platform/CommandRunner.h"

#include "Platform/ChildProcess.h"
#include "Platform/Failure.h"
#include "Platform/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

using Seconds = std::chrono::duration<double>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::int32_t notLaunched = 127;
constexpr Seconds graceAfterTermination{2.0};
constexpr milliseconds longestSleep{50};
constexpr milliseconds shortestSleep{1};

/// Gathers what a child writes to both of its streams, on one thread. Both are read whenever there is something in
/// either: a child that writes much to one is never stuck behind the other.
class Output {
public:
    explicit Output(const ChildProcess& child)
        : m_pipes{{{child.standardOutput(), POLLIN, 0}, {child.standardError(), POLLIN, 0}}} {}

    bool hasEnded() const { return m_pipes[0].fd == ended && m_pipes[1].fd == ended; }

    /// Sleeps until there is something to read, or both streams have ended, or `limit` has passed; -1 ms is no limit.
    /// Once both streams have ended it only sleeps.
    void gather(milliseconds limit) {
        if (::poll(m_pipes.data(), m_pipes.size(), static_cast<int>(limit.count())) <= 0) return;
        for (std::size_t stream = 0; stream < m_pipes.size(); ++stream)
            if (m_pipes[stream].revents != 0) read(stream);
    }

    void gatherToEnd() {
        while (!hasEnded()) gather(milliseconds(-1));
    }

    std::string standardOutput() { return textOf(m_bytes[0]); }
    std::string standardError() { return textOf(m_bytes[1]); }

private:
    /// What takes a descriptor's place at its end: a call of poll passes over it.
    static constexpr int ended = -1;

    void read(std::size_t stream) {
        std::array<char, 64 * 1024> buffer;
        const ssize_t count = ::read(m_pipes[stream].fd, buffer.data(), buffer.size());
        if (count > 0) {
            m_bytes[stream].append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            m_pipes[stream].fd = ended;
        }
    }

    static std::string textOf(std::string& bytes) {
        return Text::isValidUtf8(bytes) ? std::move(bytes) : std::string();
    }

    std::array<pollfd, 2> m_pipes;
    std::array<std::string, 2> m_bytes;
};

/// Gathers output until the child has ended or `limit` is over. The child is looked at no less than every 50 ms.
/// @returns whether it has ended.
bool waitFor(ChildProcess& child, Output& output, Seconds limit) {
    const auto start = steady_clock::now();
    // Most tools end right after they close their streams: the first looks follow each other closely.
    milliseconds sleep = shortestSleep;
    while (!child.poll()) {
        if (steady_clock::now() - start >= limit) return false;
        output.gather(output.hasEnded() ? sleep : longestSleep);
        if (output.hasEnded()) sleep = std::min(sleep * 2, longestSleep);
    }
    return true;
}

/// Waits for a child that may run for `timeout`. @returns whether it had to be stopped.
bool stopsAfter(Seconds timeout, ChildProcess& child, Output& output) {
    if (waitFor(child, output, timeout)) return false;
    child.terminate();
    if (!waitFor(child, output, graceAfterTermination)) child.kill();
    return true;
}

}  // namespace

CommandResult CommandRunner::run(const fs::path& path, const std::vector<std::string>& arguments,
                                 std::optional<std::chrono::duration<double>> timeout) {
    try {
        ChildProcess child = ChildProcess::start(path, arguments);
        Output output(child);
        CommandResult result;
        if (timeout) result.timedOut = stopsAfter(*timeout, child, output);
        // The streams may outlive the child: they end when the last process that holds them has ended.
        output.gatherToEnd();
        result.status = child.wait();
        result.stdout = output.standardOutput();
        result.stderr = output.standardError();
        return result;
    } catch (const Failure& failure) {
        CommandResult result;
        result.status = notLaunched;
        result.stderr = failure.description();
        return result;
    }
}

}  // namespace tarvik
