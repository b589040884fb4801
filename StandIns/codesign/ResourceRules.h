#pragma once

#include "Platform/Text/PropertyList.h"

#include <memory>
#include <string>

namespace tarvik::codesign {

/// Which items of a bundle a seal covers, and how: regular expressions for paths below the sealed folder, of which the
/// heaviest that fits decides. Source: Apple's Technical Note TN2206 ("Changes in OS X 10.9 and Yosemite") and the
/// rules that every CodeResources file holds.
class ResourceRules {
public:
    enum class Verdict {
        unsealed,  ///< may come, change and go
        sealed,
        optional,  ///< sealed, but may go: a user may remove languages
        nested,    ///< code with a signature of its own
    };

    /// The rules by which bundles with a folder `Resources` are sealed. They hold for those without one too, where a
    /// Mac is milder.
    static const ResourceRules& standard();
    /// Those of the seals of old, which are written beside, for readers of old.
    static const ResourceRules& ofOldSeals();

    ResourceRules(const ResourceRules&) = delete;
    ResourceRules& operator=(const ResourceRules&) = delete;
    ~ResourceRules();

    /// `path` is below the sealed folder, without a slash at its front. For one thread.
    Verdict verdictOf(const std::string& path) const;
    /// As a seal holds them.
    PropertyList propertyList() const;

private:
    struct Expressions;
    explicit ResourceRules(std::unique_ptr<Expressions> expressions);

    std::unique_ptr<Expressions> m_expressions;
};

}  // namespace tarvik::codesign
