#pragma once

#include "Platform/Basics/Failure.h"

#include <string>

namespace tarvik::packages {

/// Why a package or an archive is not taken: one sentence.
class PackageFailure : public Failure {
public:
    enum class Kind {
        damaged,  ///< it is not what it says
        unsafe,   ///< it would write where it must not
        tooLarge  ///< more than there is room for, or than is believed
    };
    PackageFailure(Kind kind, const std::string& sentence)
        : Failure("Packages", static_cast<int>(kind) + 1, sentence), m_kind(kind) {}

    Kind kind() const noexcept { return m_kind; }

private:
    Kind m_kind;
};

[[noreturn]] inline void failDamaged(const std::string& sentence) {
    throw PackageFailure(PackageFailure::Kind::damaged, sentence);
}

[[noreturn]] inline void failUnsafe(const std::string& sentence) {
    throw PackageFailure(PackageFailure::Kind::unsafe, sentence);
}

[[noreturn]] inline void failTooLarge(const std::string& sentence) {
    throw PackageFailure(PackageFailure::Kind::tooLarge, sentence);
}

}  // namespace tarvik::packages
