#pragma once

#include "Platform/Failure.h"

#include <functional>
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
    explicit Raised(std::function<void(bool)> set) : m_set(std::move(set)) { m_set(true); }
    ~Raised() { m_set(false); }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    const std::function<void(bool)> m_set;
};

}  // namespace tarvik
