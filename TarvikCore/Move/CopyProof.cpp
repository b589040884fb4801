#include "Move/CopyProof.h"

#include "Move/MoveVerifier.h"
#include "Platform/FileError.h"
#include "Platform/SystemCalls.h"

#include <fmt/format.h>

#include <future>

namespace tarvik::CopyProof {

std::optional<std::string> reasonAgainst(const Host& host, const fs::path& original, const fs::path& copy,
                                         const ChangeWatch::Mark& start, Count count) {
    std::future<int> flushed = std::async(std::launch::async, [&copy] { return SystemCalls::flushVolume(copy); });
    auto reason = count == Count::yes ? MoveVerifier::failureReason(host, original, copy)
                                      : MoveVerifier::failureReasonByItem(host, original, copy);
    const int flushError = flushed.get();
    if (reason) return reason;
    if (flushError) return FileError("flush", copy, flushError).description();
    if (auto changed = ChangeWatch::changedItem(host, original, start))
        return fmt::format("{} was changed while it was copied.", *changed);
    return std::nullopt;
}

}  // namespace tarvik::CopyProof
