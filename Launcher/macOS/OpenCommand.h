#pragma once

#include <string>
#include <vector>

namespace launcher::OpenCommand {

/// The words that ask the system to open the application at `target`, as open(1) takes them: with `documents`, which
/// are absolute paths or addresses, when there are any, and with `arguments` for a program that is started by this.
std::vector<std::string> words(const std::string& target, const std::vector<std::string>& documents,
                               const std::vector<std::string>& arguments);

}  // namespace launcher::OpenCommand
