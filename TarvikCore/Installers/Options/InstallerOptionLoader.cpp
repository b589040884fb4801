#include "Installers/Options/InstallerOptionLoader.h"

#include "Installers/Options/InstallerOptionFile.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace tarvik::InstallerOptionLoader {

namespace {

constexpr std::int64_t largestFile = 100'000;

/// By their paths in byte order.
std::vector<fs::path> optionFiles(const fs::path& root) {
    std::vector<fs::path> files;
    TreeWalk walk(root, {.order = TreeWalk::Order::any, .skipsHidden = true});
    while (walk.next())
        if (walk.event() == TreeWalk::Event::item &&
            Text::lowerCased(fs::path(walk.name()).extension().native()) == ".toml")
            files.push_back(root / walk.relativePath());
    std::sort(files.begin(), files.end(),
              [](const fs::path& left, const fs::path& right) { return left.native() < right.native(); });
    return files;
}

std::optional<InstallerOption> readOption(const fs::path& file) {
    std::optional<InstallerOption> option;
    ignoringFailure([&] { option = InstallerOptionFile::parsed(Files::read(file, largestFile)); });
    return option;
}

}  // namespace

fs::path builtInRoot() {
    return ProgramLocation::resource(AppStorageNames::installerOptions);
}

std::vector<InstallerOption> loadAll(const fs::path& userRoot) {
    return loadAll(builtInRoot(), userRoot);
}

std::vector<InstallerOption> loadAll(const fs::path& builtInRoot, const fs::path& userRoot) {
    std::map<std::string, InstallerOption> byId;
    for (const fs::path& root : {builtInRoot, userRoot})
        for (const fs::path& file : optionFiles(root)) {
            auto option = readOption(file);
            if (!option) continue;
            const std::string id = option->id;
            byId.insert_or_assign(id, *std::move(option));
        }
    std::vector<InstallerOption> options;
    options.reserve(byId.size());
    for (auto& [id, option] : byId) options.push_back(std::move(option));
    std::stable_sort(options.begin(), options.end(), [](const InstallerOption& left, const InstallerOption& right) {
        return left.label < right.label;
    });
    return options;
}

std::optional<InstallerOption> find(const Host& host, std::string_view id) {
    for (InstallerOption& option : loadAll(AppStorageNames::userInstallerOptionsRoot(host)))
        if (option.id == id) return std::move(option);
    return std::nullopt;
}

}  // namespace tarvik::InstallerOptionLoader
