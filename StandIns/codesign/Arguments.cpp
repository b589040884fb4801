#include "codesign/Arguments.h"

namespace tarvik::codesign {

namespace {

using Operation = Arguments::Operation;

/// Reads one word after the other.
class Reader {
public:
    explicit Reader(const std::vector<std::string_view>& words) : m_words(words) {}

    std::optional<Arguments> read() {
        while (m_next < m_words.size()) {
            const std::string_view word = m_words[m_next++];
            const bool isOption = !m_onlyPaths && word.size() > 1 && word.front() == '-';
            if (!isOption) {
                m_result.paths.emplace_back(word);
            } else if (word == "--") {
                m_onlyPaths = true;
            } else if (!(word.starts_with("--") ? readLong(word.substr(2)) : readLetters(word.substr(1)))) {
                return std::nullopt;
            }
        }
        // Of "-v", the first says what to do when nothing else does.
        if (!m_operation && m_result.verbosity > 0) {
            m_operation = Operation::verify;
            --m_result.verbosity;
        }
        if (!m_operation || m_result.paths.empty()) return std::nullopt;
        for (const std::string& path : m_result.paths)
            if (path.empty()) return std::nullopt;
        m_result.operation = *m_operation;
        return m_result;
    }

private:
    bool readLong(std::string_view option) {
        if (option == "sign") return readIdentity();
        if (option.starts_with("sign=")) return sign(option.substr(5));
        if (option == "verify") return choose(Operation::verify);
        if (option == "display") return choose(Operation::display);
        if (option == "verbose") return ++m_result.verbosity > 0;
        if (option.size() == 9 && option.starts_with("verbose=") && option[8] >= '0' && option[8] <= '9') {
            m_result.verbosity = option[8] - '0';
            return true;
        }
        if (option == "force") return m_result.isForced = true;
        if (option == "deep") return m_result.isDeep = true;
        if (option == "strict") return m_result.isStrict = true;
        // A signature that nobody vouches for has no time, whoever's clock is asked.
        return option == "timestamp" || option.starts_with("timestamp=");
    }

    bool readLetters(std::string_view letters) {
        for (std::size_t at = 0; at < letters.size(); ++at) {
            const char letter = letters[at];
            if (letter == 'v') {
                ++m_result.verbosity;
            } else if (letter == 'f') {
                m_result.isForced = true;
            } else if (letter == 's') {
                return at + 1 < letters.size() ? sign(letters.substr(at + 1)) : readIdentity();
            } else if (letter != 'd' || !choose(Operation::display)) {
                return false;
            }
        }
        return true;
    }

    bool readIdentity() { return m_next < m_words.size() && sign(m_words[m_next++]); }

    bool sign(std::string_view identity) {
        m_result.identity = identity;
        return choose(Operation::sign);
    }

    /// One operation, no two.
    bool choose(Operation operation) {
        if (m_operation && *m_operation != operation) return false;
        m_operation = operation;
        return true;
    }

    const std::vector<std::string_view>& m_words;
    std::size_t m_next = 0;
    bool m_onlyPaths = false;
    std::optional<Operation> m_operation;
    Arguments m_result;
};

}  // namespace

std::optional<Arguments> Arguments::parsed(const std::vector<std::string_view>& words) {
    return Reader(words).read();
}

}  // namespace tarvik::codesign
