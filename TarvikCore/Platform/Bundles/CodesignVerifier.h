#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"

#include <chrono>
#include <optional>
#include <string>

/// Whether a bundle's signature and its notarization still hold, for instance after a move.
namespace tarvik::CodesignVerifier {

struct Result {
    bool isSigned = false;
    /// The signature verifies.
    bool codesignOK = false;
    /// The notarization ticket validates; absent when there is no ticket to judge.
    std::optional<bool> staplerOK;
    /// What the two checks printed, trimmed.
    std::string codesignDetail;
    std::string staplerDetail;
    /// A tool did not end in time, or was stopped: nothing is known.
    bool isUnknown = false;

    bool passed() const { return codesignOK && staplerOK.value_or(true); }
    bool operator==(const Result&) const = default;
};

/// How long each of the tools may take.
inline constexpr std::chrono::seconds toolTimeout{20};

/// Blocks for three runs of the system's tools, each of which is stopped after `limit`. Never fails: a missing bundle
/// is unsigned, with the tool's message for a detail. A check that takes too long, or is cancelled, is no failure: the
/// result passes. A cancellation ends the tool that runs at once.
Result verify(const Host& host, const fs::path& bundle, std::chrono::duration<double> limit = toolTimeout,
              const Cancellation& cancellation = {});

}  // namespace tarvik::CodesignVerifier
