#include "OpenCommand.h"

namespace launcher {

std::vector<std::string> OpenCommand::words(const std::string& target, const std::vector<std::string>& documents,
                                            const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"/usr/bin/open"};
    if (!documents.empty()) words.emplace_back("-a");
    words.push_back(target);
    words.insert(words.end(), documents.begin(), documents.end());
    bool isFirst = true;
    for (const std::string& argument : arguments) {
        if (argument.starts_with("-psn_")) continue;  // What the Finder adds for its own use.
        if (isFirst) words.emplace_back("--args");
        isFirst = false;
        words.push_back(argument);
    }
    return words;
}

}  // namespace launcher
