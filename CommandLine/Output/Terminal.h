#pragma once

#include "Platform/Basics/Dialog.h"

#include <cstddef>
#include <string_view>

/// The three streams of the command: results on standard output, everything else on standard error.
namespace tarvik::CommandLine::Terminal {

/// Writes a result as it stands. @throws FileError when it cannot be written whole.
void writeResult(std::string_view text);
/// Writes one sentence of a result with its line break, made safe: a line break in it, from the name of a file for
/// instance, begins no line. @throws as `writeResult`.
void writeLine(std::string_view sentence);
/// Writes to standard error, as it stands. A failure is passed over: there is nobody left to tell.
void writeMessage(std::string_view text) noexcept;
/// Writes one message with its line break, made safe as `writeLine` does it.
void say(std::string_view sentence);

/// Whether what is said is seen by a person.
bool showsMessages();
/// The columns of the terminal on standard error; 80 when it does not tell.
std::size_t columns();

/// Asks on the terminal. True when the answer is the dialog's first button, "y" or "yes", in any case.
/// @throws Failure when there is no terminal to ask on.
bool ask(const Dialog& dialog);
/// Asks before something is changed, unless the answer is given by `yes`. @throws Failure when it is no.
void confirm(const Dialog& dialog, bool yes);

}  // namespace tarvik::CommandLine::Terminal
