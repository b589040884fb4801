#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"
#include "UninstallRun/AppUninstallSession.h"
#include "UninstallRun/UninstallJournal.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik {

/// The journal of an uninstall that is under way, a file in the hidden folder `.journals` beside the records of past
/// ones. Other processes see that it is under way by the lock that the file bears.
///
/// What is to go is written and flushed to the disk before `begin` returns, so it outlives a power cut. What became of
/// each thing is handed to the kernel at once, so it outlives the end of this process; a power cut may take it, and
/// each thing is then found by its identity. So nothing needs to be flushed between two items.
class UninstallJournalFile {
public:
    /// @throws FileError when the journal cannot be written, and for one that would be too large to be read again:
    /// nothing may be touched then.
    static UninstallJournalFile begin(const fs::path& root, const UninstallJournal& journal);

    /// Adds lines. What cannot be written is missing, and found out as after a power cut.
    void note(std::string_view lines) noexcept;
    /// Brings all lines to the disk.
    void flush() noexcept;
    /// The record stands in `sessionFolder` now: what only the journal knows stays there, beside it.
    void settleIn(const fs::path& sessionFolder) noexcept;

    const fs::path& path() const { return m_path; }
    /// Whether it still stands at its path, so that others find it.
    bool isFound() const;

private:
    UninstallJournalFile() = default;

    fs::path m_path;
    FileDescriptor m_file;
    FileDescriptor m_lock;
    /// The last line may have been written in part.
    bool m_isLineCut = false;
};

/// The journals that runs have left. Every operation blocks; any thread; nothing fails.
namespace UninstallJournals {

struct Found {
    /// The journal's file name without its extension.
    std::string name;
    UninstallJournal journal;
};

/// Those of runs that have ended without a record.
std::vector<Found> interrupted(const fs::path& root);
/// Whether the run that wrote the journal has ended with this record.
bool isRecordOf(const AppUninstallSession& session, const UninstallJournal& journal);
/// What the run of a past uninstall has noted, interrupted or not; nothing when it is not known, or under way.
std::optional<UninstallJournal> ofSession(const fs::path& root, const std::string& id);
/// Gives those of runs that were killed at their very end to their records.
void settle(const fs::path& root) noexcept;

}  // namespace UninstallJournals

}  // namespace tarvik
