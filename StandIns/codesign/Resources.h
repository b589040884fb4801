#pragma once

#include "Signatures/BundleLayout.h"

#include <functional>
#include <string>

/// What stands in a bundle and has to be sealed.
namespace tarvik::codesign::Resources {

struct Item {
    enum class Kind {
        file,
        link,
        nestedBundle,  ///< a folder with a dot in its name where code belongs: code of its own, not looked into
        nestedFile,    ///< a file where code belongs
        special,       ///< a pipe, a socket, a device: nothing that a seal can cover
    };

    /// Below the sealed folder.
    const std::string& path;
    Kind kind;
    bool isOptional;
    /// By which it is reached, however long its path is: the folder that holds it, and its name there.
    int folder;
    const char* name;
};

/// Calls `use` for each of them, in byte order, what the standard rules leave out passed over. So is what comes into a
/// bundle after it was signed or is signed elsewhere: the signature itself, the program, the store's receipt, the
/// notary's ticket. Folders are no items; links are not followed.
/// @throws SignatureFailure when a folder cannot be read, or the root holds what no seal covers
void forEach(const signatures::BundleLayout& layout, const std::function<void(const Item&)>& use);

/// The item's place, for messages.
fs::path placeOf(const signatures::BundleLayout& layout, const Item& item);

}  // namespace tarvik::codesign::Resources
