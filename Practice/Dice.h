#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

namespace tarvik::Practice {

/// Numbers that look random and are the same for the same seed on every system and with every standard library.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : m_state(seed) {}

    /// 64 even bits.
    std::uint64_t next() {
        m_state += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }
    /// 0 up to `limit` without `limit` itself, which is at least 1.
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }
    /// True once in `times`.
    bool onceIn(std::size_t times) { return below(times) == 0; }
    template <typename List>
    const auto& oneOf(const List& list) {
        return list[below(std::size(list))];
    }

private:
    std::uint64_t m_state;
};

}  // namespace tarvik::Practice
