#pragma once

#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>

namespace tarvik {

/// The packages that the machine's installer remembers.
struct ReceiptSnapshot {
    std::set<std::string> packageIDs;

    bool operator==(const ReceiptSnapshot&) const = default;
};

/// One key, `packageIDs`, with a sorted list. @throws Failure on reading another record.
void to_json(nlohmann::json& json, const ReceiptSnapshot& snapshot);
void from_json(const nlohmann::json& json, ReceiptSnapshot& snapshot);

}  // namespace tarvik
