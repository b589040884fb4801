#pragma once

#include <set>
#include <string>

namespace tarvik {

/// The packages that the machine's installer remembers.
struct ReceiptSnapshot {
    std::set<std::string> packageIDs;

    bool operator==(const ReceiptSnapshot&) const = default;
};

}  // namespace tarvik
