#include "Support/FailureOf.h"

#include "Platform/Basics/Failure.h"

#include <system_error>

namespace tarvik::test {

std::string failureOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const Failure& failure) {
        return failure.description();
    }
    return "done";
}

std::string wordsFor(int error) {
    return std::generic_category().message(error);
}

}  // namespace tarvik::test
