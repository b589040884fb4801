#include "Platform/Basics/Failure.h"

#include <utility>

namespace tarvik {

Failure::Failure(std::string domain, int code, std::string description)
    : m_domain(std::move(domain)), m_code(code), m_description(std::move(description)) {}

}  // namespace tarvik
