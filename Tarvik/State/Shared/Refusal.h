#pragma once

#include "Platform/Basics/Failure.h"

#include <string>
#include <utility>

namespace tarvik {

/// A wish that cannot be followed now, with the sentence for the user.
class Refusal : public Failure {
public:
    explicit Refusal(std::string sentence) : Failure("AppState", 0, std::move(sentence)) {}
};

}  // namespace tarvik
