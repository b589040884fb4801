#pragma once

#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Path.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::signatures {

/// What is wrong with the signature of an item, in the words in which the Mac's codesign tells it: "PATH: SENTENCE",
/// and a line for each detail.
class SignatureFailure : public Failure {
public:
    SignatureFailure(const fs::path& item, std::string_view sentence, const std::vector<std::string>& details = {});

    /// The same failure, told of the item that `item`, which cannot be used, is a part of.
    static SignatureFailure ofPart(const fs::path& whole, const SignatureFailure& ofPart, const fs::path& part);

    const std::string& sentence() const noexcept { return m_sentence; }
    const std::vector<std::string>& details() const noexcept { return m_details; }

private:
    std::string m_sentence;
    std::vector<std::string> m_details;
};

/// The sentences, each as the system's <Security/CSCommon.h> knows its case.
namespace Sentences {

inline constexpr const char* notSigned = "code object is not signed at all";
inline constexpr const char* unknownForm = "bundle format unrecognized, invalid, or unsuitable";
inline constexpr const char* unsupported = "invalid or unsupported format for signature";
inline constexpr const char* codeChanged = "invalid signature (code or signature have been modified)";
inline constexpr const char* infoChanged = "invalid Info.plist (plist or signature have been modified)";
inline constexpr const char* sealChanged = "invalid resource directory (directory or signature have been modified)";
inline constexpr const char* sealMissing = "code has no resources but signature indicates they must be present";
inline constexpr const char* sealTooOld = "resource envelope is obsolete (version 1 signature)";
inline constexpr const char* otherRules = "resource envelope is obsolete (custom omit rules)";
inline constexpr const char* resourceChanged = "a sealed resource is missing or invalid";
inline constexpr const char* nestedChanged = "nested code is modified or invalid";
inline constexpr const char* unsealedRoot = "unsealed contents present in the bundle root";
inline constexpr const char* linkLeavesBundle = "invalid destination for symbolic link in bundle";
inline constexpr const char* hasDetritus = "resource fork, Finder information, or similar detritus not allowed";

}  // namespace Sentences

}  // namespace tarvik::signatures
