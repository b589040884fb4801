#include "CommandLine/Grammar/BashLine.h"

#include <cstddef>

namespace tarvik::CommandLine {

namespace {

constexpr std::string_view blanks = " \t\n";
/// What a backslash takes its meaning from between double quotes.
constexpr std::string_view specialInDoubleQuotes = "\"\\$`";
/// What means something to bash outside of quotes.
constexpr std::string_view special = " \t\"'\\$`!&;|<>(){}[]*?#~^";

bool holds(std::string_view characters, char character) {
    return characters.find(character) != std::string_view::npos;
}

std::string withBackslashes(std::string_view text) {
    std::string quoted;
    for (const char character : text) {
        if (holds(special, character)) quoted += '\\';
        quoted += character;
    }
    return quoted;
}

/// Inside of single quotes nothing can be quoted: the quotes are left for it.
std::string insideSingleQuotes(std::string_view text) {
    std::string quoted;
    for (const char character : text) quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return quoted;
}

/// A "!" would be an event of the history, with a backslash too.
std::string insideDoubleQuotes(std::string_view text) {
    std::string quoted;
    for (const char character : text) {
        if (character == '!') {
            quoted += "\"'!'\"";
            continue;
        }
        if (holds(specialInDoubleQuotes, character)) quoted += '\\';
        quoted += character;
    }
    return quoted;
}

}  // namespace

BashLine readBashLine(std::string_view text, std::string_view wordBreaks) {
    BashLine line;
    std::string word;
    bool isInWord = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        const bool isLast = at + 1 == text.size();
        if (line.quote == 0 && holds(blanks, character)) {
            if (isInWord) line.words.push_back(std::move(word));
            word.clear();
            line.standing.clear();
            isInWord = false;
            continue;
        }
        isInWord = true;
        if (character == line.quote) {
            line.quote = 0;
        } else if (line.quote == 0 && (character == '"' || character == '\'')) {
            line.quote = character;
            line.standing = word;
        } else if (character == '\\' && line.quote != '\'' && !isLast &&
                   (line.quote == 0 || holds(specialInDoubleQuotes, text[at + 1]))) {
            word += text[++at];
        } else {
            word += character;
            if (line.quote == 0 && holds(wordBreaks, character)) line.standing = word;
        }
    }
    line.words.push_back(std::move(word));
    return line;
}

std::optional<std::string> replacementIn(const BashLine& line, std::string_view word) {
    if (!word.starts_with(line.standing)) return std::nullopt;
    word.remove_prefix(line.standing.size());
    if (line.quote == '\'') return insideSingleQuotes(word);
    return line.quote == '"' ? insideDoubleQuotes(word) : withBackslashes(word);
}

}  // namespace tarvik::CommandLine
