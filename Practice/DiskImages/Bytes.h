#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tarvik::Practice {

/// Bytes that grow at their end. Numbers are in the byte order that says so; a Mac's formats are big-endian.
class Bytes {
public:
    template <typename Number>
    Bytes& big(Number number) {
        for (std::size_t at = sizeof(Number); at-- > 0;) put(static_cast<std::uint64_t>(number) >> (8 * at));
        return *this;
    }
    template <typename Number>
    Bytes& little(Number number) {
        for (std::size_t at = 0; at < sizeof(Number); ++at) put(static_cast<std::uint64_t>(number) >> (8 * at));
        return *this;
    }
    Bytes& text(std::string_view bytes) {
        m_bytes += bytes;
        return *this;
    }
    Bytes& zeros(std::size_t count) {
        m_bytes.append(count, '\0');
        return *this;
    }
    /// Zeros up to the next multiple of `unit`.
    Bytes& padTo(std::size_t unit) { return zeros((unit - m_bytes.size() % unit) % unit); }

    std::size_t size() const { return m_bytes.size(); }
    const std::string& all() const& { return m_bytes; }
    std::string all() && { return std::move(m_bytes); }

private:
    void put(std::uint64_t number) { m_bytes += static_cast<char>(number & 0xFFU); }

    std::string m_bytes;
};

}  // namespace tarvik::Practice
