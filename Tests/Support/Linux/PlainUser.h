#pragma once

namespace tarvik::test {

/// While it lives, what this thread does and what it starts has no more rights than any user: permissions bind it, and
/// only an owner may change or remove what belongs to it. Other threads keep theirs. For users without such rights it
/// changes nothing.
class PlainUser {
public:
    PlainUser();
    ~PlainUser();
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    bool m_hasGivenUp = false;
};

}  // namespace tarvik::test
