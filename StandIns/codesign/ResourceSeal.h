#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::codesign {

/// One item of a seal. Of `sha256`, `link` and `codeHash` exactly one is there.
struct SealedItem {
    /// Raw bytes of the file's digest; with it that of old, if the seal has one.
    std::optional<std::string> sha256;
    std::optional<std::string> sha1;
    /// The text of a symbolic link.
    std::optional<std::string> link;
    /// What nested code is known by, 20 bytes.
    std::optional<std::string> codeHash;
    /// May be missing.
    bool isOptional = false;

    bool operator==(const SealedItem&) const = default;
};

/// The seal of a bundle's resources: what the file `_CodeSignature/CodeResources` holds, by paths below the sealed
/// folder.
struct ResourceSeal {
    using Items = std::map<std::string, SealedItem>;

    Items items;
    /// What readers of old are told: of the same items, the ordinary files in Resources, with their SHA-1.
    Items oldItems;

    /// Of the standard rules.
    std::string xml() const;

    enum class Flaw { unreadable, tooOld, otherRules };
    /// What the bytes hold. Nothing that is only nearly a seal is taken for one.
    /// @throws Flaw
    static ResourceSeal parsed(std::string_view bytes);

    bool operator==(const ResourceSeal&) const = default;
};

}  // namespace tarvik::codesign
