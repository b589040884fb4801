#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/VolumeList.h"

#include <utility>

namespace tarvik {

namespace {

class RootedVolumeList final : public VolumeList {
public:
    explicit RootedVolumeList(fs::path folder) : m_folder(std::move(folder)) {}

    std::vector<Volume> mounted() const override {
        std::vector<Volume> volumes;
        for (const std::string& name : Files::names(m_folder)) {
            const fs::path mountPath = m_folder / name;
            if (name.starts_with('.') || !Files::isFolder(mountPath)) continue;
            const auto status = fileSystemStatus(mountPath);
            if (!status) continue;
            volumes.push_back({.mountPath = mountPath,
                               .name = name,
                               .totalBytes = status->totalBytes,
                               .availableBytes = status->availableBytes,
                               .isInternal = false,
                               .isBrowsable = true,
                               .isReadOnly = status->isReadOnly,
                               .formatDescription = std::nullopt});
        }
        return volumes;
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
