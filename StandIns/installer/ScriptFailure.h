#pragma once

#include "Platform/Basics/Failure.h"

#include <string>

namespace tarvik::installer {

/// A script of a package has ended with another status than 0.
class ScriptFailure : public Failure {
public:
    explicit ScriptFailure(const std::string& package)
        : Failure("installer", 1,
                  "An error occurred while running scripts from the package \u201C" + package + "\u201D.") {}
};

}  // namespace tarvik::installer
