#include "Health/SignatureBrokenDetector.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Basics/Parallel.h"
#include "Platform/Bundles/CodesignVerifier.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tarvik::SignatureBrokenDetector {

namespace {

/// The first line that holds anything.
std::string_view firstLine(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
    return text.substr(0, text.find('\n'));
}

std::string detailOf(const CodesignVerifier::Result& result) {
    std::string detail = "codesign verify failed.";
    if (const auto line = firstLine(result.codesignDetail); !result.codesignOK && !line.empty())
        detail.append(" ").append(line);
    if (const auto line = firstLine(result.staplerDetail); !result.staplerOK.value_or(true) && !line.empty())
        detail.append(" stapler: ").append(line);
    return detail;
}

std::optional<HealthIssue> issueOf(const Host& host, const ApplicationsRootScan::Link& link) {
    if (!AppBundleEnumerator::isBundleName(link.target.filename().native()) || !Files::exists(link.target))
        return std::nullopt;
    const auto result = CodesignVerifier::verify(host, link.target);
    if (!result.isSigned || result.passed()) return std::nullopt;
    return HealthIssue{.kind = HealthIssue::Kind::signatureBroken,
                       .location = link.location,
                       .target = link.target,
                       .detail = detailOf(result)};
}

}  // namespace

std::vector<HealthIssue> detect(const Host& host, const std::vector<ApplicationsRootScan::Link>& symlinks,
                                const Cancellation& cancellation) {
    std::vector<std::optional<HealthIssue>> found(symlinks.size());
    inParallel(symlinks.size(), processorCount(), [&](std::size_t index) {
        if (!cancellation.isCancelled()) found[index] = issueOf(host, symlinks[index]);
    });
    std::vector<HealthIssue> issues;
    for (auto& issue : found)
        if (issue) issues.push_back(std::move(*issue));
    return issues;
}

}  // namespace tarvik::SignatureBrokenDetector
