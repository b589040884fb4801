#pragma once

#include "Platform/Basics/Path.h"

#include <cstddef>
#include <string>

namespace tarvik::signatures {

/// Where in a bundle everything is that a signature speaks of.
///
/// Known forms: `Contents/Info.plist` (applications, plug-ins); `Versions/Current` with `Resources/Info.plist`
/// (frameworks); `Info.plist` or `Resources/Info.plist` at the top (shallow bundles).
struct BundleLayout {
    /// As it was named, for messages.
    fs::path named;
    /// The same, links resolved.
    fs::path root;
    /// The folder whose contents are sealed.
    fs::path contents;
    fs::path executable;
    /// The executable below `contents`, as seals name it.
    std::string executableName;
    /// What Info.plist holds, byte for byte, and how many keys those are.
    std::string infoBytes;
    std::size_t infoEntries = 0;
    std::string identifier;
    bool isApplication = false;
    /// A framework with versions: of its root only `Versions` and links stand outside of the seal.
    bool isVersioned = false;

    /// Reads the item at `path`, a link to it followed.
    /// @throws SignatureFailure, for an item that is no bundle with a program in one of the known forms
    static BundleLayout at(const fs::path& path);

    fs::path signatureFolder() const { return contents / "_CodeSignature"; }
    /// Whether the program is one of a Mac, which carries its signature inside.
    bool hasMachOProgram() const;
    /// Whether the item at `path` is a file that begins as such programs do. Never waits for a pipe.
    static bool isMachO(const fs::path& path);
};

}  // namespace tarvik::signatures
