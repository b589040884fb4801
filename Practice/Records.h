#pragma once

#include "Practice/PracticeMachine.h"
#include "Practice/TrackingDatabase.h"
#include "Practice/TreeWriter.h"
#include "Records/HealthManifestEntry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::Practice {

/// What the machine remembers: the moves, and in the tracking database what was installed. Gathered while the machine
/// is made, written at the end.
class Records {
public:
    /// A move as the system itself remembers it, in both. `files` are those that the database keeps an eye on.
    void addMove(const fs::path& source, const fs::path& destination, const std::string& identifier, std::int64_t bytes,
                 std::vector<fs::path> files = {});
    /// What an installer has left.
    void addInstall(std::string_view app, std::optional<std::string> identifier, std::string_view type,
                    std::vector<fs::path> files);

    /// Writes the manifest and the database into the home. @throws Failure
    void write(TreeWriter& writer, const Machine& machine) const;

private:
    std::vector<HealthManifestEntry> m_moves;
    std::vector<TrackingDatabase::Row> m_installs;
};

}  // namespace tarvik::Practice
