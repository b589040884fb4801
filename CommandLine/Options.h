#pragma once

#include "CommandLine/Records.h"
#include "Platform/Failure.h"
#include "Platform/Path.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tarvik::CommandLine {

/// What a command line asks for.
struct Options {
    enum class Verb { drives, moveFolder, moveRestore };

    Verb verb = Verb::drives;
    /// The item of a move, as it was written.
    fs::path path;
    /// A mount path or a volume's name, as it was written.
    std::string drive;
    std::optional<fs::path> root;
    std::optional<fs::path> home;
    Format format = Format::human;
    /// Goes ahead without a question.
    bool yes = false;

    bool operator==(const Options&) const = default;
};

/// A command line that cannot be understood. `description()` is one sentence.
class WrongUse : public Failure {
public:
    explicit WrongUse(std::string description);
};

/// Text to print instead of an act: what --help and --version ask for.
struct Information {
    std::string text;
};

/// Reads the arguments, the program's own name left out. @throws WrongUse
std::variant<Options, Information> parse(const std::vector<std::string>& arguments);

}  // namespace tarvik::CommandLine
