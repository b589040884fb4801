#include "Installers/Tracking/FileSnapshot.h"

#include "Platform/Text/Json.h"

#include <string>
#include <utility>
#include <vector>

namespace tarvik {

void to_json(nlohmann::json& json, const FileSnapshot& snapshot) {
    auto list = nlohmann::json::array();
    for (const std::string_view path : snapshot.paths) list.push_back(Json::textOfPath(path));
    json["paths"] = std::move(list);
}

void from_json(const nlohmann::json& json, FileSnapshot& snapshot) {
    const nlohmann::json& list = Json::member(json, "paths");
    if (!list.is_array()) Json::refuse("a list");
    std::vector<std::string> paths;
    paths.reserve(list.size());
    for (const auto& path : list) paths.push_back(Json::decoded<fs::path>(path).native());
    snapshot.paths = PathSet(std::move(paths));
}

}  // namespace tarvik
