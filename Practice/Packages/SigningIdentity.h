#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::Practice {

/// A maker with a certificate of a made authority: signs made packages.
class SigningIdentity {
public:
    struct Options {
        std::string maker = "Practice Installer";
        std::string authority = "Practice Certification Authority";
        /// In seconds since 1970; the same dates give the same bytes.
        std::int64_t from = 1'577'836'800;
        std::int64_t to = 4'102'444'800;
    };
    /// @throws Failure when the library refuses.
    static SigningIdentity made(const Options& options);
    static SigningIdentity made() { return made(Options{}); }
    SigningIdentity(SigningIdentity&&) noexcept;
    SigningIdentity& operator=(SigningIdentity&&) noexcept;
    ~SigningIdentity();

    /// As DER: the maker's, then the authority's.
    std::vector<std::string> certificates() const;
    /// The authority's as PEM: what a machine that trusts it has among its trusted ones.
    std::string authorityAsPem() const;
    /// A signature of RSA as PKCS #1 v1.5 makes it over a digest of SHA-1.
    std::string rsaSignature(std::string_view digest) const;
    /// A message in the syntax of CMS that signs bytes which are not in it.
    std::string cmsSignature(std::string_view bytes) const;

private:
    struct State;
    explicit SigningIdentity(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

}  // namespace tarvik::Practice
