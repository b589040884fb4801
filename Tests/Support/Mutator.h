#pragma once

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::test {

/// Breaks good bytes: single bits, whole bytes, runs that are cut out, doubled or put elsewhere, numbers that are as
/// large as they can be, and pieces that mean something to the reader. The same seed breaks them in the same way.
class Mutator {
public:
    Mutator(unsigned seed, std::vector<std::string> pieces) : m_random(seed), m_pieces(std::move(pieces)) {}

    std::string mutated(std::string bytes) {
        for (std::size_t changes = 1 + below(4); changes > 0; --changes) change(bytes);
        return bytes;
    }

private:
    void change(std::string& bytes) {
        if (bytes.empty()) return;
        const std::size_t position = below(bytes.size());
        const std::size_t length = 1 + below(std::min<std::size_t>(bytes.size() - position, 32));
        switch (below(8)) {
            case 0:
                bytes[position] = static_cast<char>(bytes[position] ^ (1 << below(8)));
                break;
            case 1:
                bytes[position] = static_cast<char>(below(256));
                break;
            case 2:
                bytes.erase(position, length);
                break;
            case 3:
                bytes.insert(below(bytes.size()), bytes.substr(position, length));
                break;
            case 4:
                bytes.resize(position);
                break;
            case 5:
                bytes.replace(position, std::min<std::size_t>(length, 8),
                              std::string(std::min<std::size_t>(length, 8), '\xFF'));
                break;
            case 6:
                bytes[bytes.size() - 1 - below(std::min<std::size_t>(bytes.size(), 32))] =
                    static_cast<char>(below(256));
                break;
            default:
                bytes.insert(position, m_pieces[below(m_pieces.size())]);
        }
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

    std::mt19937 m_random;
    const std::vector<std::string> m_pieces;
};

}  // namespace tarvik::test
