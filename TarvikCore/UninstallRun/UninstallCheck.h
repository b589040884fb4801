#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Uninstall/UninstallCandidate.h"

#include <optional>
#include <string>

namespace tarvik {

/// The last look at each item before an uninstall takes it. Belongs to one thread and one run; never fails.
class UninstallCheck {
public:
    /// Both must outlive it.
    UninstallCheck(const Host& host, const AppRecord& app);

    /// Why the item stays: what stands at its path is not what was found there when the uninstall was planned, or holds
    /// the records of this program. Nothing when it may go, and when nothing stands there. Of a candidate that does not
    /// say what was seen, only a mount point, the records and the applications themselves can be told. A few status
    /// calls, and the property list of a bundle.
    std::optional<std::string> reasonToStay(const UninstallCandidate& candidate);

private:
    bool holdsRecords(const fs::path& path, Files::ItemType type);
    bool isFolderOfRecords(const fs::path& folder) const;

    const Host& m_host;
    const AppRecord& m_app;
    /// Ours, as it is named and where it really is.
    const fs::path m_records;
    const fs::path m_realRecords;
    /// Most items share a few folders, one after the other.
    fs::path m_lastFolder;
    bool m_isLastOfRecords = false;
};

}  // namespace tarvik
