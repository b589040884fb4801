#include "State/StateWorld.h"

#include "Platform/Files/Files.h"
#include "State/EventLoop.h"
#include "Support/Tree.h"

#include <fmt/format.h>

namespace tarvik::test {

std::vector<Volume> ChangingVolumes::mounted() const {
    std::unique_lock lock(m_mutex);
    ++m_askedCount;
    m_changed.wait(lock, [this] { return !m_isHeld; });
    if (m_isBroken) throw "broken";
    return m_volumes;
}

std::vector<fs::path> ChangingVolumes::mountPaths() const {
    const std::lock_guard lock(m_mutex);
    std::vector<fs::path> paths;
    for (const Volume& volume : m_volumes) paths.push_back(volume.mountPath);
    return paths;
}

std::optional<std::int64_t> ChangingVolumes::availableBytes(const fs::path&) const {
    const std::scoped_lock lock(m_mutex);
    return m_available;
}

void ChangingVolumes::set(std::vector<Volume> volumes) {
    const std::scoped_lock lock(m_mutex);
    m_volumes = std::move(volumes);
    m_isBroken = false;
}

void ChangingVolumes::breakDown() {
    const std::scoped_lock lock(m_mutex);
    m_isBroken = true;
}

void ChangingVolumes::setAvailable(std::optional<std::int64_t> bytes) {
    const std::scoped_lock lock(m_mutex);
    m_available = bytes;
}

void ChangingVolumes::hold() {
    const std::scoped_lock lock(m_mutex);
    m_isHeld = true;
}

void ChangingVolumes::release() {
    const std::scoped_lock lock(m_mutex);
    m_isHeld = false;
    m_changed.notify_all();
}

int ChangingVolumes::askedCount() const {
    const std::scoped_lock lock(m_mutex);
    return m_askedCount;
}

StateWorld::StateWorld() {
    volumes->set({backup()});
    volumes->setAvailable(std::int64_t{1} << 40);
    world.host.volumes = volumes;
    state = std::make_unique<AppState>(world.host, dialogs);
}

StateWorld::~StateWorld() {
    volumes->release();
    letGo();
    state.reset();
}

Volume StateWorld::backup(std::int64_t freeBytes) const {
    return {.mountPath = world.drive,
            .name = "Backup",
            .totalBytes = std::int64_t{1} << 41,
            .availableBytes = freeBytes,
            .isInternal = false,
            .isBrowsable = true,
            .isReadOnly = false,
            .formatDescription = "APFS"};
}

Volume StateWorld::volume(const char* mountPath, const char* name, bool isInternal, bool isReadOnly) {
    return {.mountPath = mountPath,
            .name = name,
            .totalBytes = 1000,
            .availableBytes = 250,
            .isInternal = isInternal,
            .isBrowsable = true,
            .isReadOnly = isReadOnly,
            .formatDescription = std::nullopt};
}

void StateWorld::settle() {
    spinUntil([this] { return state->isIdle(); });
}

void StateWorld::begin() {
    state->refreshAll();
    settle();
}

std::vector<MoveJob> StateWorld::makeFolders(const std::vector<const char*>& names) {
    std::vector<MoveJob> jobs;
    for (const char* name : names) {
        makeFile(world.home / name / "file", name);
        jobs.emplace_back(name, world.home / name, world.foldersOnDrive() / name, JobStatus::pending(), 1, 0);
    }
    return jobs;
}

void StateWorld::runJobs(std::vector<MoveJob> jobs) {
    state->runJobs(std::move(jobs), world.drive.native(), world.drive, false);
}

void StateWorld::holdCopyOf(const std::string& name) {
    const auto scriptFolder = world.folder / "hold";
    makeFolder(scriptFolder);
    world.withDitto(fmt::format(
        R"(if [ "${{2##*/}}" = "{}" ]; then : > "{}/waiting"; while [ ! -e "{}/go" ]; do sleep 0.01; done; fi; cp -aT "$2" "$3")",
        name, scriptFolder.native(), scriptFolder.native()));
}

void StateWorld::waitForHeldCopy() {
    spinUntil([this] { return Files::exists(world.folder / "hold/waiting"); });
    spinOnce();
}

void StateWorld::letGo() {
    makeFile(world.folder / "hold/go");
}

}  // namespace tarvik::test
