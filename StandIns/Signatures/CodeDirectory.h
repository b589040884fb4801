#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::signatures {

struct BundleLayout;

/// What binds a program, its Info.plist and the seal of its bundle's resources together: one record with a digest of
/// each. Its own digest is what others know the code by.
///
/// A Mac keeps it inside a Mach-O program, and for any other program in a file of the bundle, `_CodeSignature/
/// CodeDirectory`. Here it is always that file, in the Mac's form (struct CS_CodeDirectory of <kern/cs_blobs.h>,
/// version 2.4): programs on other systems are no Mach-O files. One that is, is sealed as a whole like any other, and a
/// signature that it carries inside is not looked at.
struct CodeDirectory {
    std::string identifier;
    /// Bytes of the program.
    std::uint64_t programSize = 0;
    /// SHA-256 of each, 32 bytes. The program is one page, whatever its size.
    std::string program;
    std::string info;
    std::string requirements;
    std::string resources;

    /// Of an ad hoc signature: nobody vouches for it.
    static constexpr std::uint32_t adHoc = 2;

    std::string bytes() const;
    /// What `bytes()` has made; nothing for anything else.
    static std::optional<CodeDirectory> parsed(std::string_view bytes);

    /// What code is known by: the first 20 bytes of the SHA-256 of the record.
    std::string hash() const;
    /// The record of a bundle. @throws SignatureFailure when it has none, or none that can be read.
    static CodeDirectory ofBundle(const BundleLayout& layout);

    bool operator==(const CodeDirectory&) const = default;
};

}  // namespace tarvik::signatures
