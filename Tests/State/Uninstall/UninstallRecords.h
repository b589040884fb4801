#pragma once

#include "Applications/AppRecord.h"
#include "Uninstall/AppUninstallPlan.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace tarvik::test {

/// An application in /Applications with this name.
inline AppRecord appRecord(const std::string& name, std::int64_t bytes = 0) {
    AppRecord record;
    record.bundlePath = "/Applications/" + name + ".app";
    record.id = record.bundlePath.native();
    record.displayName = name;
    record.bundleIdentifier = "org." + name + ".app";
    record.bundleSizeBytes = bytes;
    return record;
}

inline UninstallCandidate candidate(const fs::path& path, UninstallCategory category, std::int64_t bytes = 0,
                                    bool isDefault = true) {
    UninstallCandidate made;
    made.path = path;
    made.category = category;
    made.sizeBytes = bytes;
    made.reason = "Matches bundle id";
    made.defaultSelected = isDefault;
    return made;
}

}  // namespace tarvik::test
