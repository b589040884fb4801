#pragma once

#include "Packages/Component.h"

#include <string>
#include <vector>

namespace tarvik::packages {

/// An open package: one, or a product of several.
struct Product {
    /// As a user is told it.
    std::string name;
    /// In the order in which they are installed.
    std::vector<Component> components;
};

}  // namespace tarvik::packages
