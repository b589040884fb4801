#include "Platform/Text.h"
#include "Practice/PracticeMachine.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <string>

int main(int argc, char** argv) {
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
    // A minus sign would be taken for a very large number.
    const CLI::Validator digits(
        [](const std::string& text) {
            const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
            return isNumber ? std::string() : fmt::format("{} is not a number from 0 up", text);
        },
        "");
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
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }

    try {
        const auto machine = Practice::build(folder, options);
        fmt::print("Made a practice machine in {}: {}, {}, {}.\n", machine.root.native(),
                   Text::counted(machine.files, "file"), Text::counted(machine.folders, "folder"),
                   Text::byteCount(machine.bytes));
        return std::fflush(stdout) == 0 ? 0 : 1;
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
