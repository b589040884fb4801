#include "CommandLine/Acts.h"
#include "CommandLine/CompletionActs.h"
#include "CommandLine/Grammar/Options.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/StandardStreams.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <exception>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace {

using namespace tarvik;
using namespace tarvik::CommandLine;

enum ExitStatus { done = 0, failed = 1, wrongUse = 2 };

/// The machine that the options name. One that is not there makes the command line wrong.
Host hostOf(const Options& options) {
    try {
        return Host::fromOptions(options.root, options.home);
    } catch (const Failure& failure) {
        throw WrongUse(failure.description(), std::string(usageOf(options.verb)));
    }
}

void run(const std::vector<std::string>& arguments) {
    if (CompletionActs::isQuestion(arguments)) return CompletionActs::answer(arguments);
    const auto parsed = parse(arguments);
    if (const auto* information = std::get_if<Information>(&parsed)) return Terminal::writeResult(information->text);
    const auto& options = std::get<Options>(parsed);
    const auto host = hostOf(options);
    host.guideTools();
    Acts::perform(host, options);
}

}  // namespace

int main(int argc, char** argv) {
    StandardStreams::occupyClosed();
    surviveClosedPipes();
    try {
        run({argv + 1, argv + argc});
        return done;
    } catch (const WrongUse& use) {
        Terminal::say(use.description());
        const std::string usage = fmt::format("Usage: {}", use.usage());
        for (const std::string_view line : Text::lines(usage)) Terminal::say(line);
        return wrongUse;
    } catch (const Failure& failure) {
        Terminal::say(failure.description());
    } catch (const std::exception& error) {
        Terminal::say(error.what());
    }
    return failed;
}
