#include "codesign/ResourceRules.h"

#include <algorithm>
#include <new>
#include <regex.h>
#include <span>
#include <vector>

namespace tarvik::codesign {

namespace {

using Verdict = ResourceRules::Verdict;

struct Rule {
    const char* pattern;
    Verdict verdict;
    int weight;
};

/// The weight of a rule that names none.
constexpr int plain = 1;

constexpr Rule standardRules[] = {
    {".*\\.dSYM($|/)", Verdict::sealed, 11},
    {"^(.*/)?\\.DS_Store$", Verdict::unsealed, 2000},
    {"^(Frameworks|SharedFrameworks|PlugIns|Plug-ins|XPCServices|Helpers|MacOS|Library/"
     "(Automator|Spotlight|LoginItems))/",
     Verdict::nested, 10},
    {"^.*", Verdict::sealed, plain},
    {"^Info\\.plist$", Verdict::unsealed, 20},
    {"^PkgInfo$", Verdict::unsealed, 20},
    {"^Resources/", Verdict::sealed, 20},
    {"^Resources/.*\\.lproj/", Verdict::optional, 1000},
    {"^Resources/.*\\.lproj/locversion.plist$", Verdict::unsealed, 1100},
    {"^Resources/Base\\.lproj/", Verdict::sealed, 1010},
    {"^[^/]+$", Verdict::nested, 10},
    {"^embedded\\.provisionprofile$", Verdict::sealed, 20},
    {"^version\\.plist$", Verdict::sealed, 20},
};

constexpr Rule oldRules[] = {
    {"^Resources/", Verdict::sealed, plain},
    {"^Resources/.*\\.lproj/", Verdict::optional, 1000},
    {"^Resources/.*\\.lproj/locversion.plist$", Verdict::unsealed, 1100},
    {"^Resources/Base\\.lproj/", Verdict::sealed, 1010},
    {"^version.plist$", Verdict::sealed, plain},
};

/// Compiled when it is first needed: what only describes a seal needs none.
class Expression {
public:
    explicit Expression(const char* pattern) : m_pattern(pattern) {}
    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;
    ~Expression() {
        if (m_isCompiled) ::regfree(&m_compiled);
    }

    bool fits(const std::string& path) {
        if (!m_isCompiled && ::regcomp(&m_compiled, m_pattern, REG_EXTENDED | REG_NOSUB) != 0) throw std::bad_alloc();
        m_isCompiled = true;
        return ::regexec(&m_compiled, path.c_str(), 0, nullptr, 0) == 0;
    }

private:
    const char* m_pattern;
    bool m_isCompiled = false;
    regex_t m_compiled{};
};

}  // namespace

struct ResourceRules::Expressions {
    struct Entry {
        Rule rule;
        std::unique_ptr<Expression> expression;
    };
    /// The heaviest first.
    std::vector<Entry> entries;

    explicit Expressions(std::span<const Rule> rules) {
        for (const Rule& rule : rules) entries.push_back({rule, std::make_unique<Expression>(rule.pattern)});
        std::stable_sort(entries.begin(), entries.end(),
                         [](const Entry& one, const Entry& other) { return one.rule.weight > other.rule.weight; });
    }
};

ResourceRules::ResourceRules(std::unique_ptr<Expressions> expressions) : m_expressions(std::move(expressions)) {}

ResourceRules::~ResourceRules() = default;

const ResourceRules& ResourceRules::standard() {
    static const ResourceRules rules(std::make_unique<Expressions>(standardRules));
    return rules;
}

const ResourceRules& ResourceRules::ofOldSeals() {
    static const ResourceRules rules(std::make_unique<Expressions>(oldRules));
    return rules;
}

Verdict ResourceRules::verdictOf(const std::string& path) const {
    for (const auto& entry : m_expressions->entries)
        if (entry.expression->fits(path)) return entry.rule.verdict;
    return Verdict::unsealed;
}

PropertyList ResourceRules::propertyList() const {
    PropertyList::Dictionary rules;
    for (const auto& [rule, expression] : m_expressions->entries) {
        PropertyList::Dictionary words;
        if (rule.verdict == Verdict::unsealed) words["omit"] = true;
        if (rule.verdict == Verdict::optional) words["optional"] = true;
        if (rule.verdict == Verdict::nested) words["nested"] = true;
        if (rule.weight != plain) words["weight"] = double(rule.weight);
        rules[rule.pattern] = words.empty() ? PropertyList(true) : PropertyList(std::move(words));
    }
    return rules;
}

}  // namespace tarvik::codesign
