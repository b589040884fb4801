#include "Support/FailureOf.h"

#include "Platform/Basics/Failure.h"

namespace tarvik::test {

std::string failureOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const Failure& failure) {
        return failure.description();
    }
    return "done";
}

}  // namespace tarvik::test
