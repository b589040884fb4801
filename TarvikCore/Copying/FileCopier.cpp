#include "Copying/FileCopier.h"

#include "Copying/MoverError.h"
#include "Copying/MoverStasher.h"
#include "Copying/ProgressTimer.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/StreamReader.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <string>

namespace tarvik::FileCopier {

namespace {

/// For how long a wish to stop may stay unseen.
constexpr std::chrono::milliseconds longestDeafness{100};

/// What a tool says of its failure. It may go on about millions of files: the first line tells why, the others are
/// only counted.
class Complaints {
public:
    void add(std::string_view piece) {
        m_start += piece.substr(0, std::min(piece.size(), longestStart - m_start.size()));
        for (const char byte : piece) {
            if (byte == '\n') {
                m_lineHasText = false;
            } else if (!m_lineHasText && !isBlank(byte)) {
                m_lineHasText = true;
                ++m_lines;
            }
        }
    }

    /// One sentence; empty when nothing was said, or nothing that is text.
    std::string sentence() const {
        for (const std::string_view line : Text::lines(m_start)) {
            const std::string first = Text::isValidUtf8(line) ? Text::trimmed(line) : std::string();
            if (!first.empty()) return m_lines < 2 ? first : fmt::format("{} (and {} more)", first, m_lines - 1);
        }
        return {};
    }

private:
    static constexpr std::size_t longestStart = std::size_t{16} * 1024;

    static bool isBlank(char byte) { return byte == ' ' || byte == '\t' || byte == '\r'; }

    std::string m_start;
    std::int64_t m_lines = 0;
    bool m_lineHasText = false;
};

/// What a user's environment may hold that makes the tool leave things out: resource forks, attributes and access lists
/// (DITTONORSRC in ditto(1), COPYFILE_DISABLE in <copyfile.h>).
const EnvironmentChange completeCopies = {{"DITTONORSRC", std::nullopt}, {"COPYFILE_DISABLE", std::nullopt}};

}  // namespace

void runDitto(const Host& host, const fs::path& from, const fs::path& to, const Cancellation& cancellation) {
    ChildProcess ditto = ChildProcess::start(host.tools.ditto, {"--rsrc", from.native(), to.native()}, completeCopies);
    Complaints complaints;
    StreamReader reader;
    reader.add(ditto.standardError(), [&complaints](std::string_view piece) { complaints.add(piece); });
    reader.add(ditto.standardOutput(), {});  // Read so that the tool never waits for us.
    while (!reader.hasEnded() && !cancellation.isCancelled()) reader.read(longestDeafness);
    if (!reader.hasEnded()) ditto.kill();
    const int status = ditto.wait();
    if (status == 0) return;
    std::string message = complaints.sentence();
    if (message.empty()) message = fmt::format("exit {}", status);
    throw Failure("FileCopier", status, "ditto failed: " + message);
}

void runDitto(const Host& host, const fs::path& from, const fs::path& to, std::int64_t totalBytes,
              const ProgressCallback& progress) {
    if (!progress) return runDitto(host, from, to);
    ProgressTimer timer(
        [&](const Cancellation& cancellation) { progress(SizeCalculator::size(host, to, cancellation), totalBytes); });
    runDitto(host, from, to);
    timer.cancel();  // No report of a part comes beside or behind that of the whole.
    progress(totalBytes, totalBytes);
}

void copy(const Host& host, const fs::path& from, const fs::path& to, std::int64_t totalBytes,
          const ProgressCallback& progress) {
    const bool isOurs = !Files::itemExists(to);
    try {
        runDitto(host, from, to, totalBytes, progress);
    } catch (const Failure& failure) {
        if (isOurs)
            disposeOf(host, to);
        else
            MoverStasher::stash(host, to);
        throw MoverError::copyFailed(failure.description());
    }
}

void disposeOf(const Host& host, const fs::path& copy) {
    MoverStasher::stash(host, copy);
    // A full drive takes no folder to set things aside in: what fills it must not pass for a copy.
    ignoringFailure([&] {
        if (Files::itemExists(copy)) Files::removeItem(copy);
    });
}

}  // namespace tarvik::FileCopier
