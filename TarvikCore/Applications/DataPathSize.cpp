#include "Applications/DataPathSize.h"

#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

namespace tarvik {

std::string DataPathSize::displayPath(const fs::path& home) const {
    std::string whole = Text::displayable(path.native());
    if (!home.has_relative_path() || !Files::isAtOrBelow(path, home)) return whole;
    return fmt::format("~{}", Text::displayable(path.native().substr(home.native().size())));
}

}  // namespace tarvik
