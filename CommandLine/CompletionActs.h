#pragma once

#include <string>
#include <vector>

/// Answers the scripts of `CompletionScripts`: what can stand at the end of a command line that is still being typed.
///
/// They ask `tarvik --complete zsh WORD...` (fish the same), with the words behind the command's name, the last one
/// being typed, and `tarvik --complete bash LINE WORDBREAKS`, with the line as it stands up to the cursor.
namespace tarvik::CommandLine::CompletionActs {

/// Whether the arguments of the command are such a question. No verb and no option is written like it.
bool isQuestion(const std::vector<std::string>& arguments);

/// Prints the answer. Its first line tells what the shell shall add of its own: "files", "folders" or "nothing". A line
/// follows for each word: for bash as it shall be inserted, for the others without quotes, with a tab and a note behind
/// it where there is one. Names that hold control characters are left out. Reads names of drives and applications, and
/// measures nothing. Blocks. What cannot be read is not offered.
void answer(const std::vector<std::string>& arguments);

}  // namespace tarvik::CommandLine::CompletionActs
