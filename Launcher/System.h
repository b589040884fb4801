#pragma once

#include <string>
#include <vector>

/// What a launcher asks of the system that it runs on.
namespace launcher::System {

/// The path of the running program, links resolved; empty when the system does not tell.
std::string executable();

/// Opens the application at `target`, with the documents that the system has started this program to open. Does not
/// return where it becomes that application itself.
/// @returns why it could not be opened, in words that follow "because"; nothing when it is open.
std::string open(const std::string& target, const std::vector<std::string>& arguments);

/// Tells the user one sentence.
void tell(const std::string& sentence);

}  // namespace launcher::System
