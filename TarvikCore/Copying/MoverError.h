#pragma once

#include "Platform/Basics/Failure.h"

#include <cstdint>
#include <string>

namespace tarvik {

/// A move that failed. Its domain is "MoverEngine" and its code is the case's position.
class MoverError : public Failure {
public:
    enum class Case {
        insufficientSpace,
        copyFailed,
        verifyFailed,
        symlinkFailed,
        sourceRemoveFailed,
        appIsRunning,
        sourceMissing,
        destinationExists,
    };

    /// Both in bytes.
    static MoverError insufficientSpace(std::int64_t needed, std::int64_t available);
    static MoverError copyFailed(const std::string& reason);
    static MoverError verifyFailed(const std::string& reason);
    static MoverError symlinkFailed(const std::string& reason);
    static MoverError sourceRemoveFailed(const std::string& reason);
    /// `name` is the bundle's last path component.
    static MoverError appIsRunning(const std::string& name);
    static MoverError sourceMissing();
    static MoverError destinationExists();

    /// The same case, told in other words.
    static MoverError retold(const MoverError& error, std::string description);

    Case kind() const { return static_cast<Case>(code()); }

private:
    MoverError(Case kind, std::string description);
};

}  // namespace tarvik
