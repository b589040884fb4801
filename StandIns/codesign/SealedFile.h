#pragma once

#include "Signatures/BundleLayout.h"
#include "Signatures/Digest.h"
#include "codesign/Resources.h"

#include <optional>
#include <string>
#include <vector>

/// Looks at one item of a bundle as a seal does.
namespace tarvik::codesign::SealedFile {

/// The digests of a file, in the order of `kinds`; nothing when it is no ordinary file any more.
/// @throws SignatureFailure when it cannot be read, or when `isStrict` and it carries what no seal covers
std::optional<std::vector<std::string>> digestsOf(const signatures::BundleLayout& layout, const Resources::Item& item,
                                                  const std::vector<signatures::Digest::Kind>& kinds, bool isStrict);
/// The same of the bundle's program, SHA-256 alone.
std::string digestOfProgram(const signatures::BundleLayout& layout, bool isStrict);
/// The text of a link. @throws SignatureFailure when it cannot be read, or when `isStrict` and it leads out of the
/// bundle to anything but the system
std::string linkOf(const signatures::BundleLayout& layout, const Resources::Item& item, bool isStrict);

/// For a strict look. @throws SignatureFailure when the bundle's own folder carries what no seal covers
void requireNoDetritus(const signatures::BundleLayout& layout);

}  // namespace tarvik::codesign::SealedFile
