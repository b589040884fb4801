#pragma once

#include "Platform/Basics/Path.h"

namespace tarvik::test {

/// Makes the process one that permissions bind, for the object's life, also where the administrator runs the tests.
class OrdinaryUser {
public:
    /// `folder` is opened to everybody; what is made before this and may not be read is closed below it.
    explicit OrdinaryUser(const fs::path& folder);
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    bool m_wasAdministrator;
};

}  // namespace tarvik::test
