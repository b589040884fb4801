#include "Platform/Processes/CommandRunner.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/ProcessTree.h"
#include "Platform/Processes/StreamReader.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

namespace tarvik {

namespace {

using Seconds = std::chrono::duration<double>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr Seconds graceAfterTermination{2.0};
constexpr Seconds forever{std::numeric_limits<double>::infinity()};
constexpr milliseconds longestSleep{50};
constexpr milliseconds shortestSleep{1};

/// What a child writes to both of its streams, up to `most` bytes of each.
class Output {
public:
    explicit Output(const ChildProcess& child, std::size_t most = std::numeric_limits<std::size_t>::max())
        : m_most(most) {
        reader.add(child.standardOutput(), [this](std::string_view piece) { add(piece, m_standardOutput); });
        reader.add(child.standardError(), [this](std::string_view piece) { add(piece, m_standardError); });
    }

    std::string standardOutput() { return textOf(m_standardOutput); }
    std::string standardError() { return textOf(m_standardError); }

    StreamReader reader;

private:
    struct Stream {
        std::string bytes;
        bool isCut = false;
    };

    void add(std::string_view piece, Stream& stream) const {
        const std::string_view kept = piece.substr(0, m_most - stream.bytes.size());
        stream.bytes += kept;
        stream.isCut = stream.isCut || kept.size() < piece.size();
    }

    /// A cut can go through a character, of which the first bytes are left.
    static void completeLastCharacter(std::string& bytes) {
        const auto isLater = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
        while (!bytes.empty() && isLater(bytes.back())) bytes.pop_back();
        if (!bytes.empty()) bytes.pop_back();
    }

    static std::string textOf(Stream& stream) {
        if (stream.isCut) completeLastCharacter(stream.bytes);
        return Text::isValidUtf8(stream.bytes) ? std::move(stream.bytes) : std::string();
    }

    const std::size_t m_most;
    Stream m_standardOutput;
    Stream m_standardError;
};

/// How long a child may run.
struct Time {
    Seconds limit;
    /// Null where nobody can cancel it.
    const Cancellation* cancellation = nullptr;
    steady_clock::time_point start = steady_clock::now();

    bool isCancelled() const { return cancellation && cancellation->isCancelled(); }
    bool isOver() const { return isCancelled() || steady_clock::now() - start >= limit; }
};

/// Gathers output until the child has ended or its time is over. The child is looked at no less than every 50 ms.
/// @returns whether it has ended.
bool waitFor(ChildProcess& child, StreamReader& output, const Time& time) {
    // Most tools end right after they close their streams: the first looks follow each other closely.
    milliseconds sleep = shortestSleep;
    while (!child.poll()) {
        if (time.isOver()) return false;
        output.read(output.hasEnded() ? sleep : longestSleep);
        if (output.hasEnded()) sleep = std::min(sleep * 2, longestSleep);
    }
    return true;
}

/// Waits for a child as long as it may run. @returns whether it had to be stopped.
bool stopsAfter(const Time& time, ChildProcess& child, StreamReader& output) {
    if (waitFor(child, output, time)) return false;
    if (!time.isCancelled()) child.terminate();
    if (time.isCancelled() || !waitFor(child, output, {graceAfterTermination, time.cancellation})) child.kill();
    return true;
}

/// Ends a child with all that it has started.
void endWithDescendants(ChildProcess& child, StreamReader& output) {
    ProcessTree tree(child.identifier());
    child.terminate();
    tree.send(SIGTERM);
    const Time grace{graceAfterTermination};
    while (!grace.isOver() && (!child.poll() || tree.isRunning())) output.read(longestSleep);
    tree.send(SIGKILL);
    child.kill();
    waitFor(child, output, {forever});
}

CommandResult notLaunched(const Failure& failure) {
    CommandResult result;
    result.status = CommandResult::notLaunched;
    result.stderr = failure.description();
    return result;
}

}  // namespace

CommandResult CommandRunner::run(const fs::path& path, const std::vector<std::string>& arguments,
                                 std::optional<std::chrono::duration<double>> timeout,
                                 const EnvironmentChange& change) {
    try {
        ChildProcess child = ChildProcess::start(path, arguments, change);
        Output output(child);
        CommandResult result;
        if (timeout) result.timedOut = stopsAfter({*timeout}, child, output.reader);
        // The streams may outlive the child: they end when the last process that holds them has ended.
        output.reader.readToEnd();
        result.status = child.wait();
        result.stdout = output.standardOutput();
        result.stderr = output.standardError();
        return result;
    } catch (const Failure& failure) {
        return notLaunched(failure);
    }
}

CommandResult CommandRunner::runWritingTo(const FileDescriptor& output, const fs::path& path,
                                          const std::vector<std::string>& arguments) {
    try {
        ChildProcess child = ChildProcess::startWritingTo(output, path, arguments);
        Output gathered(child);
        gathered.reader.readToEnd();
        CommandResult result;
        result.status = child.wait();
        result.stderr = gathered.standardError();
        return result;
    } catch (const Failure& failure) {
        return notLaunched(failure);
    }
}

CommandResult CommandRunner::runUntil(const fs::path& path, const std::vector<std::string>& arguments,
                                      const Cancellation& cancellation, std::size_t mostOutput) {
    const Time time{forever, &cancellation};
    if (time.isCancelled()) return {.status = CommandResult::notLaunched, .timedOut = true};
    try {
        ChildProcess child = ChildProcess::start(path, arguments);
        Output output(child, mostOutput);
        CommandResult result;
        if (!waitFor(child, output.reader, time)) {
            result.timedOut = true;
            endWithDescendants(child, output.reader);
        }
        while (!output.reader.hasEnded() && !time.isOver()) output.reader.read(longestSleep);
        result.status = child.wait();
        result.stdout = output.standardOutput();
        result.stderr = output.standardError();
        return result;
    } catch (const Failure& failure) {
        return notLaunched(failure);
    }
}

CommandResult CommandRunner::ask(const fs::path& path, const std::vector<std::string>& arguments,
                                 const Bounds& bounds) {
    const Time time{bounds.limit, &bounds.cancellation};
    if (time.isCancelled()) return {.status = CommandResult::notLaunched, .timedOut = true};
    try {
        ChildProcess child = ChildProcess::start(path, arguments);
        Output output(child, bounds.mostOutput);
        CommandResult result;
        result.timedOut = stopsAfter(time, child, output.reader);
        while (!output.reader.hasEnded() && !time.isOver()) output.reader.read(longestSleep);
        result.status = child.wait();
        result.stdout = output.standardOutput();
        result.stderr = output.standardError();
        return result;
    } catch (const Failure& failure) {
        return notLaunched(failure);
    }
}

}  // namespace tarvik
