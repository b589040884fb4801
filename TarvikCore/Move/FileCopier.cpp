#include "Move/FileCopier.h"

#include "Move/MoverError.h"
#include "Move/ProgressTimer.h"
#include "Platform/ChildProcess.h"
#include "Platform/Failure.h"
#include "Platform/SizeCalculator.h"
#include "Platform/StreamReader.h"
#include "Platform/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace tarvik::FileCopier {

namespace {

constexpr std::size_t longestMessage = 16 * 1024;

}  // namespace

void runDitto(const Host& host, const fs::path& from, const fs::path& to) {
    ChildProcess ditto = ChildProcess::start(host.tools.ditto, {"--rsrc", from.native(), to.native()});
    std::string output;
    StreamReader reader;
    // The first words tell why; a tool that goes on about millions of files is not listened to.
    reader.add(ditto.standardError(), [&output](std::string_view piece) {
        output += piece.substr(0, std::min(piece.size(), longestMessage - output.size()));
    });
    reader.add(ditto.standardOutput(), [](std::string_view) {});  // Read so that the tool never waits for us.
    reader.readToEnd();
    const int status = ditto.wait();
    if (status == 0) return;
    std::string message = Text::isValidUtf8(output) ? Text::trimmed(output) : std::string();
    if (message.empty()) message = fmt::format("exit {}", status);
    throw Failure("FileCopier", status, "ditto failed: " + message);
}

void copy(const Host& host, const fs::path& from, const fs::path& to, std::int64_t totalBytes,
          const ProgressCallback& progress) {
    ProgressTimer timer(
        [&](const Cancellation& cancellation) { progress(SizeCalculator::size(host, to, cancellation), totalBytes); });
    try {
        runDitto(host, from, to);
    } catch (const Failure& failure) {
        throw MoverError::copyFailed(failure.description());
    }
    timer.cancel();  // No report of a part comes beside or behind that of the whole.
    progress(totalBytes, totalBytes);
}

}  // namespace tarvik::FileCopier
