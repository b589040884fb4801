#include "Platform/Processes/CommandRunner.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/StreamReader.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tarvik {

namespace {

using Seconds = std::chrono::duration<double>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr Seconds graceAfterTermination{2.0};
constexpr milliseconds longestSleep{50};
constexpr milliseconds shortestSleep{1};

/// What a child writes to both of its streams.
class Output {
public:
    explicit Output(const ChildProcess& child) {
        reader.add(child.standardOutput(), [this](std::string_view piece) { m_standardOutput += piece; });
        reader.add(child.standardError(), [this](std::string_view piece) { m_standardError += piece; });
    }

    std::string standardOutput() { return textOf(m_standardOutput); }
    std::string standardError() { return textOf(m_standardError); }

    StreamReader reader;

private:
    static std::string textOf(std::string& bytes) {
        return Text::isValidUtf8(bytes) ? std::move(bytes) : std::string();
    }

    std::string m_standardOutput;
    std::string m_standardError;
};

/// Gathers output until the child has ended or `limit` is over. The child is looked at no less than every 50 ms.
/// @returns whether it has ended.
bool waitFor(ChildProcess& child, StreamReader& output, Seconds limit) {
    const auto start = steady_clock::now();
    // Most tools end right after they close their streams: the first looks follow each other closely.
    milliseconds sleep = shortestSleep;
    while (!child.poll()) {
        if (steady_clock::now() - start >= limit) return false;
        output.read(output.hasEnded() ? sleep : longestSleep);
        if (output.hasEnded()) sleep = std::min(sleep * 2, longestSleep);
    }
    return true;
}

/// Waits for a child that may run for `timeout`. @returns whether it had to be stopped.
bool stopsAfter(Seconds timeout, ChildProcess& child, StreamReader& output) {
    if (waitFor(child, output, timeout)) return false;
    child.terminate();
    if (!waitFor(child, output, graceAfterTermination)) child.kill();
    return true;
}

}  // namespace

CommandResult CommandRunner::run(const fs::path& path, const std::vector<std::string>& arguments,
                                 std::optional<std::chrono::duration<double>> timeout,
                                 const EnvironmentChange& change) {
    try {
        ChildProcess child = ChildProcess::start(path, arguments, change);
        Output output(child);
        CommandResult result;
        if (timeout) result.timedOut = stopsAfter(*timeout, child, output.reader);
        // The streams may outlive the child: they end when the last process that holds them has ended.
        output.reader.readToEnd();
        result.status = child.wait();
        result.stdout = output.standardOutput();
        result.stderr = output.standardError();
        return result;
    } catch (const Failure& failure) {
        CommandResult result;
        result.status = CommandResult::notLaunched;
        result.stderr = failure.description();
        return result;
    }
}

}  // namespace tarvik
