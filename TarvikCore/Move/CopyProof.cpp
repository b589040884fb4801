#include "Move/CopyProof.h"

#include "Move/MoveVerifier.h"
#include "Platform/FileError.h"
#include "Platform/SystemCalls.h"

#include <future>

namespace tarvik::CopyProof {

std::optional<std::string> reasonAgainst(const Host& host, const fs::path& original, const fs::path& copy,
                                         Count count) {
    // Where no thread can be had, the flush waits for the comparison to end.
    std::future<int> flushed =
        std::async(std::launch::async | std::launch::deferred, [&copy] { return SystemCalls::flushVolume(copy); });
    auto reason = count == Count::yes ? MoveVerifier::failureReason(host, original, copy)
                                      : MoveVerifier::failureReasonByItem(host, original, copy);
    const int flushError = flushed.get();
    if (reason) return reason;
    if (flushError) return FileError("flush", copy, flushError).description();
    return std::nullopt;
}

}  // namespace tarvik::CopyProof
