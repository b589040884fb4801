#pragma once

#include "Platform/Processes/CommandResult.h"
#include "Support/TemporaryFolder.h"

#include <string>

namespace tarvik::test {

/// A bundle with a script for a program, languages, a link, a framework and a plug-in, signed by the stand-in.
class SignedApp {
public:
    SignedApp();

    CommandResult sign() const;
    /// As the health check asks.
    CommandResult verify() const;
    /// What the verification says after "PATH: ", each place below the bundle; "valid" when there is nothing to say.
    std::string flaw() const;
    fs::path operator/(const fs::path& name) const { return path / name; }

    /// Gives the bundle another seal, for which its record vouches as for the right one.
    void forgeSeal(const std::string& bytes) const;

    TemporaryFolder folder;
    fs::path path;
    fs::path contents;
    fs::path signature;
    fs::path seal;
    fs::path framework;
    fs::path plugIn;
};

/// A bundle with `Contents/Info.plist` and a program, unsigned.
void makeUnsignedBundle(const fs::path& bundle);
/// Changes one byte of a file where it is.
void flipByte(const fs::path& file, std::size_t at);

}  // namespace tarvik::test
