#include "Copying/CopyProof.h"

#include "Copying/MoveVerifier.h"
#include "Platform/Files/FileError.h"
#include "Platform/Storage/VolumeFlush.h"

namespace tarvik::CopyProof {

std::optional<std::string> reasonAgainst(const Host& host, const fs::path& original, const fs::path& copy,
                                         Count count) {
    VolumeFlush flush(copy);
    auto reason = count == Count::yes ? MoveVerifier::failureReason(host, original, copy)
                                      : MoveVerifier::failureReasonByItem(host, original, copy);
    const int flushError = flush.error();
    if (reason) return reason;
    if (flushError) return FileError("flush", copy, flushError).description();
    return std::nullopt;
}

}  // namespace tarvik::CopyProof
