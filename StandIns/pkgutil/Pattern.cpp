#include "pkgutil/Pattern.h"

#include <array>

namespace tarvik::pkgutil {

Pattern::Pattern(const std::string& text) {
    const int error = ::regcomp(&m_expression, text.c_str(), REG_EXTENDED);
    if (error == 0) return;
    std::array<char, 256> words{};
    ::regerror(error, &m_expression, words.data(), words.size());
    m_complaint = words.data();
}

Pattern::~Pattern() {
    if (m_complaint.empty()) ::regfree(&m_expression);
}

bool Pattern::fits(const std::string& identifier) const {
    // Of all matches POSIX gives the leftmost, and of those the longest: the whole, if the whole fits.
    regmatch_t match{};
    return m_complaint.empty() && ::regexec(&m_expression, identifier.c_str(), 1, &match, 0) == 0 && match.rm_so == 0 &&
           match.rm_eo == static_cast<regoff_t>(identifier.size());
}

}  // namespace tarvik::pkgutil
