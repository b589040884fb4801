#pragma once

#include <string>
#include <string_view>

namespace CLI {
class App;
}

/// What the grammars of the verbs are made of. The library that reads command lines stays behind the sources.
namespace tarvik::CommandLine::GrammarParts {

/// What help shows behind the name of an argument that can be given several times.
inline constexpr const char* several = "...";

/// The words of a verb, or the beginning of several: "move restore", "move"; empty for the whole command.
std::string wordsOf(const CLI::App& app);

/// A verb below the command or below another verb.
CLI::App* addVerb(CLI::App& parent, std::string_view name, const char* description);
/// An option that takes a value, and one that takes none.
void addOption(CLI::App& app, const char* name, std::string& value, const char* description);
void addFlag(CLI::App& app, const char* name, bool& flag, const char* description);
/// An argument that is given once. `name` may be several alternatives: "NAME|PATH".
void addArgument(CLI::App& app, const char* name, std::string& value, const char* description);

/// What help calls the value of an option.
std::string valueOf(std::string_view option);
/// The sentence about a word that comes after all arguments, of which the verb takes one.
std::string surplusSentence(std::string_view word, std::string_view argument);

}  // namespace tarvik::CommandLine::GrammarParts
