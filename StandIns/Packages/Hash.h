#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tarvik::packages {

/// A digest that grows with what it is given. The algorithms are those that archives name: md5, sha1, sha256, sha512.
class Hash {
public:
    /// Nothing for an algorithm that is none of them.
    static std::optional<Hash> named(std::string_view algorithm);
    Hash(Hash&&) noexcept;
    Hash& operator=(Hash&&) noexcept;
    ~Hash();

    void add(std::string_view bytes);
    /// The raw digest of all; nothing can be added any more.
    std::string digest();

private:
    struct State;
    explicit Hash(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// `bytes` in hexadecimal digits.
std::string hexadecimal(std::string_view bytes);

}  // namespace tarvik::packages
