#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A command line as bash hands it to a completion: as it was typed, up to the cursor. Pure; safe on every thread.
///
/// Bash replaces only the end of the word that is being typed: what stands behind an open quote, or behind the last of
/// the characters that COMP_WORDBREAKS holds (see "Programmable Completion" and COMP_WORDBREAKS in bash(1)).
namespace tarvik::CommandLine {

struct BashLine {
    /// Without quotes and backslashes; the command first, the word that is being typed last.
    std::vector<std::string> words;
    /// What of the last word bash leaves standing.
    std::string standing;
    /// The quote that is open at the end; 0 without one.
    char quote = 0;

    bool operator==(const BashLine&) const = default;
};

BashLine readBashLine(std::string_view line, std::string_view wordBreaks);

/// What bash shall put there so that the last word becomes `word`, quoted as the line needs it. Nothing when `word`
/// does not begin as what stays standing.
std::optional<std::string> replacementIn(const BashLine& line, std::string_view word);

}  // namespace tarvik::CommandLine
