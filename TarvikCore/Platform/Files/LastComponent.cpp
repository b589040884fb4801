#include "Platform/Files/LastComponent.h"

namespace tarvik {

std::string lastComponent(const fs::path& path) {
    const fs::path item = path.has_filename() ? path : path.parent_path();
    return item.has_filename() ? item.filename().native() : item.native();
}

}  // namespace tarvik
