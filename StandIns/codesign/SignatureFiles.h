#pragma once

#include "Signatures/BundleLayout.h"
#include "Signatures/CodeDirectory.h"
#include "codesign/ResourceSeal.h"

#include <optional>
#include <string>
#include <string_view>

/// The files in a bundle's folder `_CodeSignature`, beside the code directory.
namespace tarvik::codesign::SignatureFiles {

/// The code's requirements of itself: the form of a Mac for none (<Security/CSCommon.h>, SecRequirementType).
inline constexpr std::string_view noRequirements{"\xFA\xDE\x0C\x01\0\0\0\x0C\0\0\0\0", 12};

/// Nothing when they cannot be read.
std::optional<std::string> requirementsOf(const signatures::BundleLayout& layout);
/// The seal that `directory` vouches for. @throws SignatureFailure
ResourceSeal sealOf(const signatures::BundleLayout& layout, const signatures::CodeDirectory& directory);
/// Writes all of them, the directory last: until it stands, the signature is that of before, or broken.
/// @throws SignatureFailure; FileError
void write(const signatures::BundleLayout& layout, std::string_view seal, const signatures::CodeDirectory& directory);

}  // namespace tarvik::codesign::SignatureFiles
