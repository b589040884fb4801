#pragma once

#include "Platform/Basics/Failure.h"

#include <fmt/format.h>
#include <unicode/utypes.h>

namespace tarvik {

/// Throws a Failure of the domain "Text" when the Unicode library could not do its work: it lacks its data, or memory.
inline void throwUnicodeFailure(UErrorCode status) {
    if (U_FAILURE(status))
        throw Failure("Text", status, fmt::format("Could not handle a text: {}", u_errorName(status)));
}

}  // namespace tarvik
