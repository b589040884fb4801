#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::packages {

/// The file of a product that tells of which packages it is made, and which of them are installed.
struct Distribution {
    struct Package {
        std::string identifier;
        /// As it is written there, with %20 and the like read: "#Editor.pkg" lies in the same archive, others are paths
        /// beside this file.
        std::string reference;
        bool operator==(const Package&) const = default;
    };

    /// Empty where it has none, or one that is looked up elsewhere.
    std::string title;
    /// In the order in which they are installed, each once: by the outline of choices where there is one, without the
    /// choices that are not selected at the start.
    std::vector<Package> packages;

    /// Pure. @throws PackageFailure when it is none, when a package has no file, and when what is installed, or whether
    /// anything may be, is decided by a script: those are not understood here.
    static Distribution parsed(std::string_view xml);
};

}  // namespace tarvik::packages
