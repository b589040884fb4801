#include "Move/FileCopier.h"

#include "Move/MoverError.h"
#include "Move/MoverStasher.h"
#include "Move/ProgressTimer.h"
#include "Move/SizeCalculator.h"
#include "Platform/ChildProcess.h"
#include "Platform/Failure.h"
#include "Platform/StreamReader.h"
#include "Platform/Text.h"

#include <fmt/format.h>

namespace tarvik::FileCopier {

void runDitto(const Host& host, const fs::path& from, const fs::path& to) {
    ChildProcess ditto = ChildProcess::start(host.tools.ditto, {"--rsrc", from.native(), to.native()});
    std::string output;
    StreamReader reader;
    reader.add(ditto.standardError(), [&output](std::string_view piece) { output += piece; });
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
        MoverStasher::stash(host, to);
        throw MoverError::copyFailed(failure.description());
    }
    progress(totalBytes, totalBytes);
}

}  // namespace tarvik::FileCopier
