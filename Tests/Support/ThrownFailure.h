#pragma once

#include "Platform/Basics/Failure.h"

#include <functional>

namespace tarvik::test {

/// The failure that an act ends with; one of the domain "none" when it does not fail.
inline Failure failureThrownBy(const std::function<void()>& act) {
    try {
        act();
    } catch (const Failure& failure) {
        return failure;
    }
    return {"none", 0, "done"};
}

}  // namespace tarvik::test
