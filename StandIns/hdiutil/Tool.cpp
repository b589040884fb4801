#include "hdiutil/Tool.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/StreamReader.h"
#include "Platform/Processes/Utf8Locale.h"

#include <array>
#include <chrono>
#include <csignal>

namespace tarvik::hdiutil::Tool {

namespace {

volatile std::sig_atomic_t isCancelled = 0;

extern "C" void cancel(int) {
    isCancelled = 1;
}

}  // namespace

void letSignalsCancel() {
    struct sigaction action {};
    action.sa_handler = cancel;  // Without SA_RESTART: what waits for output is woken.
    for (const int signal : std::array{SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
}

int run(const fs::path& program, const std::vector<std::string>& arguments, const Sink& sink) {
    constexpr std::chrono::milliseconds longestWait(500);  // A signal may come just before the waiting begins.
    auto child = ChildProcess::start(program, arguments, {{"TZ", "UTC"}, {"LC_ALL", Utf8Locale::name()}});
    StreamReader reader;
    reader.add(child.standardOutput(), sink);
    reader.add(child.standardError(), {});
    while (!reader.hasEnded()) {
        reader.read(longestWait);
        if (isCancelled != 0) throw Failure("hdiutil", 1, "attach canceled");
    }
    const int status = child.wait();
    if (isCancelled != 0) throw Failure("hdiutil", 1, "attach canceled");
    return status;
}

}  // namespace tarvik::hdiutil::Tool
