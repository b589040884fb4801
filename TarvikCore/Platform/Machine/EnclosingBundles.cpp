#include "Platform/Machine/EnclosingBundles.h"

namespace tarvik::EnclosingBundles {

std::vector<fs::path> of(const fs::path& file) {
    std::vector<fs::path> bundles;
    fs::path folder;
    for (const fs::path& component : file.parent_path()) {
        folder /= component;
        if (component.extension() == ".app") bundles.push_back(folder);
    }
    return bundles;
}

}  // namespace tarvik::EnclosingBundles
