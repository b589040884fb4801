#include "CommandLine/Output/Terminal.h"

#include "CommandLine/Output/Columns.h"
#include "MovePlan/FolderMove.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarvik::CommandLine::Terminal {

namespace {

/// Writes all of `text`. @returns 0 or errno.
int writeAll(int descriptor, std::string_view text) noexcept {
    while (!text.empty()) {
        const auto written = ::write(descriptor, text.data(), text.size());
        if (written >= 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

/// One line from standard input without its line break, byte by byte, so that nothing behind it is swallowed. A line
/// that ends with the input and not with a break counts as no answer.
std::string readLine() {
    std::string line;
    for (;;) {
        char byte = 0;
        const auto count = ::read(STDIN_FILENO, &byte, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return {};
        if (byte == '\n') return line;
        line += byte;
    }
}

}  // namespace

void writeResult(std::string_view text) {
    if (const int error = writeAll(STDOUT_FILENO, text)) throw FileError("write to", "standard output", error);
}

void writeMessage(std::string_view text) noexcept {
    writeAll(STDERR_FILENO, text);
}

void writeLine(std::string_view sentence) {
    writeResult(Columns::oneLine(sentence) + "\n");
}

void say(std::string_view sentence) {
    writeMessage(Columns::oneLine(sentence) + "\n");
}

bool showsMessages() {
    return ::isatty(STDERR_FILENO) == 1;
}

std::size_t columns() {
    struct winsize size {};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
}

bool ask(const Dialog& dialog) {
    if (::isatty(STDIN_FILENO) != 1 || !showsMessages())
        throw Failure("CommandLine", 1, "There is no terminal to ask on: pass --yes to go ahead without a question.");
    const auto& goAhead = dialog.buttons.front();
    say(dialog.title);
    for (const auto& detail : dialog.details) say(detail);
    writeMessage(Columns::printable(dialog.text) + "\n");  // It may have several paragraphs.
    writeMessage(fmt::format("{}? [y/N] ", goAhead));
    const auto answer = Text::caseFolded(Text::trimmed(readLine()));
    return answer == "y" || answer == "yes" || answer == Text::caseFolded(goAhead);
}

void confirm(const Dialog& dialog, bool yes) {
    if (!yes && !ask(dialog)) throw FolderMove::cancelled();
}

}  // namespace tarvik::CommandLine::Terminal
