#pragma once

#include "Packages/ByteSource.h"
#include "Packages/SafeName.h"
#include "Platform/Basics/Path.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarvik::packages {

/// One package that is installed as a whole: what it writes where, and the scripts around that.
struct Component {
    std::string identifier;
    std::string version;
    /// What a message calls it: "Editor".
    std::string name;
    /// Where the payload goes, from the machine's root on.
    SafeName::Components place;
    /// In the order in which they run: names in the folder of the scripts.
    std::vector<std::string> before;
    std::vector<std::string> after;
    /// The same for one that is installed already, where that differs.
    std::optional<std::vector<std::string>> beforeUpgrade;
    std::optional<std::vector<std::string>> afterUpgrade;
    /// Each call begins anew. Empty where the package has none.
    std::function<ByteSource()> payload;
    std::function<ByteSource()> scripts;
    /// The folder of the scripts of a package that is a folder, instead of `scripts`.
    std::optional<fs::path> scriptFolder;
};

/// A file that tells of one package, the element `pkg-info` of the file PackageInfo. Pure.
/// @throws PackageFailure when it is none, or names a place or a script that is elsewhere.
Component componentOfPackageInfo(std::string_view xml);
/// Whether a receipt can bear the identifier, as the name of a file.
bool isIdentifier(const std::string& text);

}  // namespace tarvik::packages
