#include "Discovery/DataPathSize.h"

#include "Platform/Files.h"
#include "Platform/Text.h"

namespace tarvik {

std::string DataPathSize::displayPath(const fs::path& home) const {
    const std::string whole = Text::displayable(path.native());
    if (!home.has_relative_path() || !Files::isAtOrBelow(path, home)) return whole;
    return "~" + Text::displayable(path.native().substr(home.native().size()));
}

}  // namespace tarvik
