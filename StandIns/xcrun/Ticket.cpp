#include "xcrun/Ticket.h"

#include "Platform/Files/Files.h"
#include "Signatures/BundleLayout.h"
#include "Signatures/CodeDirectory.h"
#include "Signatures/SignatureFailure.h"

#include <cstdint>
#include <string>

namespace tarvik::xcrun::Ticket {

namespace {

/// It lists digests: those of an application with thousands of programs fit in.
constexpr std::int64_t largestTicket = std::int64_t{16} << 20;
/// How each begins.
constexpr const char* mark = "s8ch";

}  // namespace

State stateOf(const fs::path& path) {
    const auto layout = signatures::BundleLayout::at(path);
    const fs::path ticket = layout.contents / "CodeResources";
    // In very old bundles a link of this name leads to the seal.
    if (!Files::itemExists(ticket) || Files::isSymbolicLink(ticket)) return State::none;
    try {
        const std::string bytes = Files::read(ticket, largestTicket);
        const bool fits = bytes.starts_with(mark) &&
                          bytes.find(signatures::CodeDirectory::ofBundle(layout).hash()) != std::string::npos;
        return fits ? State::fits : State::doesNotFit;
    } catch (const Failure&) {
        return State::doesNotFit;
    }
}

}  // namespace tarvik::xcrun::Ticket
