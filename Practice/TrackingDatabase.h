#pragma once

#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <vector>

/// Makes the database in which the tool `setupbook` keeps what was installed.
namespace tarvik::Practice::TrackingDatabase {

/// One installed item, with what the two makers of rows fill in.
struct Row {
    std::string installId;
    std::string appName;
    std::optional<std::string> bundleId;
    std::string installType;
    std::string installedAt;
    std::vector<fs::path> files;
};

/// The bytes of a database with these rows: the same for the same rows. @throws Failure
std::string bytes(const std::vector<Row>& rows);

}  // namespace tarvik::Practice::TrackingDatabase
