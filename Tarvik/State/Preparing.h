#pragma once

#include "Platform/Failure.h"

#include <string>
#include <utility>

namespace tarvik {

/// A wish that cannot be followed now, with the sentence for the user.
class Refusal : public Failure {
public:
    explicit Refusal(std::string sentence) : Failure("AppState", 0, std::move(sentence)) {}
};

/// Sets a flag for as long as it lives.
class Raised {
public:
    explicit Raised(bool& flag) : m_flag(flag) { m_flag = true; }
    ~Raised() { m_flag = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& m_flag;
};

}  // namespace tarvik
