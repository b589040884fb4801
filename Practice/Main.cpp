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
    app.add_option("FOLDER", folder, "Where to make it: a new or empty folder")->type_name("")->required();
    app.add_option("--apps", options.apps, "How many applications")->type_name("N")->capture_default_str();
    app.add_option("--files", options.files, "How many files in the home and on the drives")
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--seed", options.seed, "The same seed gives the same bytes")->type_name("N")->capture_default_str();
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
