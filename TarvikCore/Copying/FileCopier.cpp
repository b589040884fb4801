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
#include <cstddef>
#include <string>

namespace tarvik::FileCopier {

namespace {

constexpr std::size_t longestMessage = std::size_t{16} * 1024;

/// What a user's environment may hold that makes the tool leave things out: resource forks, attributes and access lists
/// (DITTONORSRC in ditto(1), COPYFILE_DISABLE in <copyfile.h>).
const EnvironmentChange completeCopies = {{"DITTONORSRC", std::nullopt}, {"COPYFILE_DISABLE", std::nullopt}};

}  // namespace

void runDitto(const Host& host, const fs::path& from, const fs::path& to) {
    ChildProcess ditto = ChildProcess::start(host.tools.ditto, {"--rsrc", from.native(), to.native()}, completeCopies);
    std::string output;
    StreamReader reader;
    // The first words tell why; a tool that goes on about millions of files is not listened to.
    reader.add(ditto.standardError(), [&output](std::string_view piece) {
        output += piece.substr(0, std::min(piece.size(), longestMessage - output.size()));
    });
    reader.add(ditto.standardOutput(), {});  // Read so that the tool never waits for us.
    reader.readToEnd();
    const int status = ditto.wait();
    if (status == 0) return;
    std::string message = Text::isValidUtf8(output) ? Text::trimmed(output) : std::string();
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
