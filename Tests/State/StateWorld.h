#pragma once

#include "Platform/Machine/VolumeList.h"
#include "State/Apps/AppsState.h"
#include "State/Dedupe/DedupeState.h"
#include "State/Folders/FoldersState.h"
#include "State/Health/HealthState.h"
#include "State/ScriptedDialogs.h"
#include "State/Shared/AppState.h"
#include "State/Symlinks/SymlinksState.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace tarvik::test {

/// Volumes that a test changes while background threads read them.
class ChangingVolumes : public VolumeList {
public:
    std::vector<Volume> mounted() const override;
    /// Neither counted nor held: no volume is asked.
    std::vector<fs::path> mountPaths() const override;
    std::optional<std::int64_t> availableBytes(const fs::path&) const override;

    void set(std::vector<Volume> volumes);
    /// From now on whoever asks for the volumes is thrown what is no exception of the library, until `set`.
    void breakDown();
    void setAvailable(std::optional<std::int64_t> bytes);
    /// From now on whoever asks for the volumes waits until `release`; then it gets the list of that time.
    void hold();
    void release();
    /// How often the list was asked for, waiting askers included.
    int askedCount() const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    mutable int m_askedCount = 0;
    std::vector<Volume> m_volumes;
    std::optional<std::int64_t> m_available;
    bool m_isHeld = false;
    bool m_isBroken = false;
};

/// A state object over a small made machine with one external drive, "Backup".
class StateWorld : public testing::Test {
protected:
    StateWorld();
    ~StateWorld() override;

    Volume backup(std::int64_t freeBytes = std::int64_t{1} << 40) const;
    /// A volume of which only the record exists.
    static Volume volume(const char* mountPath, const char* name, bool isInternal, bool isReadOnly = false);

    /// Runs the event loop until nothing is under way.
    void settle();
    /// Refreshes, so that "Backup" is selected.
    void begin();
    /// Makes folders in the home, each with one file that holds its name, and the jobs that move them.
    std::vector<MoveJob> makeFolders(const std::vector<const char*>& names);
    void runJobs(std::vector<MoveJob> jobs);
    /// Makes the copy tool wait in front of the folder `name` until `letGo`.
    void holdCopyOf(const std::string& name);
    void waitForHeldCopy();
    void letGo();
    AppsState& appsTab() const { return state->tab<AppsState>(); }
    FoldersState& foldersTab() const { return state->tab<FoldersState>(); }
    SymlinksState& symlinksTab() const { return state->tab<SymlinksState>(); }
    HealthState& healthTab() const { return state->tab<HealthState>(); }
    DedupeState& dedupeTab() const { return state->tab<DedupeState>(); }
    JobStatus statusOf(std::size_t job) const { return state->jobs().at(job).job.status; }

    World world;
    std::shared_ptr<ChangingVolumes> volumes = std::make_shared<ChangingVolumes>();
    ScriptedDialogs dialogs;
    std::unique_ptr<AppState> state;
};

}  // namespace tarvik::test
