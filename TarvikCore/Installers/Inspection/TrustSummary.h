#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// How far a source can be trusted.
struct TrustSummary {
    /// The values of `status`. Only packages are ever trusted or untrusted; of images and archives nothing is said of
    /// what is inside.
    static constexpr std::string_view trusted = "trusted";
    static constexpr std::string_view untrusted = "untrusted";
    static constexpr std::string_view untrustedScript = "untrusted-script";
    static constexpr std::string_view appBundle = "app-bundle";
    static constexpr std::string_view diskImage = "disk-image";
    static constexpr std::string_view zipArchive = "zip-archive";
    static constexpr std::string_view inspectFailed = "inspect-failed";
    static constexpr std::string_view unsupported = "unsupported";

    std::string status;
    /// Lines for the user, as the tools gave them.
    std::vector<std::string> details;
    /// The source carries install scripts.
    bool hasScripts = false;
    /// The source writes to places of the system.
    bool hasPrivilegedPayload = false;

    bool operator==(const TrustSummary&) const = default;
};

/// One key a field, of the field's name. @throws Failure on reading a record without one of them, or with a value of
/// the wrong type.
void to_json(nlohmann::json& json, const TrustSummary& trust);
void from_json(const nlohmann::json& json, TrustSummary& trust);

}  // namespace tarvik

template <>
struct std::hash<tarvik::TrustSummary> {
    std::size_t operator()(const tarvik::TrustSummary& trust) const noexcept;
};
