#pragma once

/// Two keys for made packages. They are known to everybody and vouch for nothing; they stand here so that a practice
/// machine has the same bytes on every run.
namespace tarvik::Practice::SigningKeys {

/// In the form of PEM.
extern const char* const authority;
extern const char* const maker;

}  // namespace tarvik::Practice::SigningKeys
