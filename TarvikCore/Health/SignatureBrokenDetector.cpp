#include "Health/SignatureBrokenDetector.h"

#include "Discovery/AppBundleEnumerator.h"
#include "Platform/Basics/Parallel.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tarvik::SignatureBrokenDetector {

namespace {

constexpr int mostUnknown = 4;

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

/// Looks at one bundle after the other, on several threads. A tool that hangs would take its time for each of them:
/// when it has not answered for several in a row, it is not asked any more.
class Verification {
public:
    Verification(const Host& host, std::chrono::duration<double> limit, const Cancellation& cancellation)
        : m_host(host), m_limit(limit), m_cancellation(cancellation) {}

    std::optional<HealthIssue> issueOf(const ApplicationsRootScan::Link& link) {
        if (m_cancellation.isCancelled() || m_unknownInARow >= mostUnknown) return std::nullopt;
        if (!AppBundleEnumerator::isBundleName(link.target.filename().native()) || !Files::exists(link.target))
            return std::nullopt;
        const auto result = CodesignVerifier::verify(m_host, link.target, m_limit, m_cancellation);
        if (result.isUnknown)
            ++m_unknownInARow;
        else
            m_unknownInARow = 0;
        if (!result.isSigned || result.passed()) return std::nullopt;
        return HealthIssue{.kind = HealthIssue::Kind::signatureBroken,
                           .location = link.location,
                           .target = link.target,
                           .detail = detailOf(result)};
    }

private:
    const Host& m_host;
    const std::chrono::duration<double> m_limit;
    const Cancellation& m_cancellation;
    std::atomic<int> m_unknownInARow = 0;
};

}  // namespace

std::vector<HealthIssue> detect(const Host& host, const std::vector<ApplicationsRootScan::Link>& symlinks,
                                const Cancellation& cancellation, std::chrono::duration<double> limit) {
    Verification verification(host, limit, cancellation);
    std::vector<std::optional<HealthIssue>> found(symlinks.size());
    inParallel(symlinks.size(), processorCount(),
               [&](std::size_t index) { found[index] = verification.issueOf(symlinks[index]); });
    std::vector<HealthIssue> issues;
    for (auto& issue : found)
        if (issue) issues.push_back(std::move(*issue));
    return issues;
}

}  // namespace tarvik::SignatureBrokenDetector
