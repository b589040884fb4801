#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/VolumeList.h"

#include <algorithm>
#include <utility>

namespace tarvik {

namespace {

std::optional<Volume> volumeAt(const fs::path& mountPath) {
    if (!Files::isFolder(mountPath)) return std::nullopt;
    const auto status = fileSystemStatus(mountPath);
    if (!status) return std::nullopt;
    return Volume{.mountPath = mountPath,
                  .name = mountPath.filename().native(),
                  .totalBytes = status->totalBytes,
                  .availableBytes = status->availableBytes,
                  .isInternal = false,
                  .isBrowsable = true,
                  .isReadOnly = status->isReadOnly,
                  .formatDescription = std::nullopt};
}

class RootedVolumeList final : public VolumeList {
public:
    explicit RootedVolumeList(fs::path folder) : m_folder(std::move(folder)) {}

    std::vector<Volume> mounted() const override {
        std::vector<Volume> volumes;
        for (const fs::path& mountPath : mountPaths())
            if (auto volume = volumeAt(mountPath)) volumes.push_back(*std::move(volume));
        return volumes;
    }

    std::optional<Volume> at(const fs::path& mountPath) const override {
        const auto paths = mountPaths();
        const bool isOne = std::find(paths.begin(), paths.end(), mountPath) != paths.end();
        return isOne ? volumeAt(mountPath) : std::nullopt;
    }

    std::vector<fs::path> mountPaths() const override {
        std::vector<fs::path> paths;
        for (const std::string& name : Files::names(m_folder))
            if (!name.starts_with('.')) paths.push_back(m_folder / name);
        return paths;
    }

    std::optional<std::int64_t> availableBytes(const fs::path& path) const override {
        const auto status = fileSystemStatus(path);
        return status ? status->availableBytes : std::nullopt;
    }

private:
    const fs::path m_folder;
};

}  // namespace

std::shared_ptr<const VolumeList> makeRootedVolumeList(const fs::path& root) {
    return std::make_shared<RootedVolumeList>(root / "Volumes");
}

}  // namespace tarvik
