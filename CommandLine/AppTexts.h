#pragma once

#include "CommandLine/FoundApps.h"
#include "CommandLine/Output/Records.h"
#include "Platform/Basics/Path.h"

#include <optional>
#include <string>
#include <vector>

/// Applications as text. `home` is the folder that is written "~".
namespace tarvik::CommandLine::AppTexts {

/// Who vouches for an application; nothing where that is not known.
struct Vouchers {
    std::optional<std::string> signedBy;
    std::optional<std::string> notarization;
};

/// A line for each application, with titles.
std::string table(const std::vector<FoundApp>& apps);
/// All about one, on as many lines as that takes.
std::string portrait(const FoundApp& app, const Vouchers& vouchers, const fs::path& home);

/// The fields of one application, without its data paths.
Record recordOf(const FoundApp& app);
/// The same with who vouches for it.
Record recordOf(const FoundApp& app, const Vouchers& vouchers);
/// One record for each data path, in the order in which the categories are shown.
std::vector<Record> dataRecordsOf(const AppEntry& entry);

}  // namespace tarvik::CommandLine::AppTexts
