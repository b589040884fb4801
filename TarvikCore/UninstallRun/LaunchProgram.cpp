#include "UninstallRun/LaunchProgram.h"

#include "Platform/Files/Files.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Text/PropertyList.h"

#include <string>

namespace tarvik::LaunchProgram {

namespace {

std::optional<std::string> namedIn(const PropertyList& description) {
    if (auto program = description.text("Program")) return program;
    const PropertyList* const arguments = description.find("ProgramArguments");
    const auto* const list = arguments ? arguments->as<PropertyList::List>() : nullptr;
    const auto* const first = list && !list->empty() ? list->front().as<std::string>() : nullptr;
    return first ? std::optional(*first) : std::nullopt;
}

}  // namespace

std::optional<fs::path> of(const Host& host, const fs::path& plist) {
    const auto named = namedIn(PropertyList::dictionaryAt(plist));
    if (!named || !fs::path(*named).is_absolute() || named->find('\0') != std::string::npos) return std::nullopt;
    const fs::path program = Files::standardized(*named);
    // The home of a machine in a folder is known by its whole path.
    return Files::isAtOrBelow(program, host.root) ? program : SystemFolders::below(host, program);
}

}  // namespace tarvik::LaunchProgram
