#include "Platform/Text/Text.h"
#include "Practice/PracticeMachine.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <string>
#include <system_error>

namespace {

/// The library would take a minus sign for a very large number, what is too large for the largest, and nothing for 0.
/// @returns an empty text for a number.
std::string whyNoNumber(const std::string& text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range) return fmt::format("{} is too large", text);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber ? std::string() : fmt::format("\"{}\" is not a number from 0 up", text);
}

int run(int argc, char** argv) {
    using namespace tarvik;
    Practice::Options options;
    std::string folder;

    CLI::App app("Makes a practice machine in a folder: applications, a home with data, two drives.",
                 "tarvik-practice");
    app.add_option("FOLDER", folder, "Where to make it: a new or empty folder")
        ->type_name("")
        ->required()
        ->check(
            [](const std::string& text) { return text.empty() ? std::string("the name is empty") : std::string(); });
    const CLI::Validator digits(whyNoNumber, "");
    app.add_option("--apps", options.apps, "How many plain applications, besides those of every special kind")
        ->type_name("N")
        ->check(digits)
        ->capture_default_str();
    app.add_option("--files", options.files, "How many files in the home and on the drives")
        ->type_name("N")
        ->check(digits)
        ->capture_default_str();
    app.add_option("--app-files", options.appFiles, "How many files in the plain applications and their data")
        ->type_name("N")
        ->check(digits)
        ->capture_default_str();
    app.add_option("--seed", options.seed, "The same seed gives the same bytes")
        ->type_name("N")
        ->check(digits)
        ->capture_default_str();
    app.add_flag("--broken", options.broken, "With one thing gone wrong of each kind that tarvik health finds");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }

    const auto machine = Practice::build(folder, options);
    fmt::print("Made a practice machine in {}: {}, {}, {}.\n", machine.root.native(),
               Text::counted(machine.files, "file"), Text::counted(machine.folders, "folder"),
               Text::byteCount(machine.bytes));
    return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
