#include "Installers/Tracking/ReceiptSnapshot.h"

#include "Platform/Text/Json.h"

#include <vector>

namespace tarvik {

void to_json(nlohmann::json& json, const ReceiptSnapshot& snapshot) {
    Json::write(json, "packageIDs", std::vector<std::string>(snapshot.packageIDs.begin(), snapshot.packageIDs.end()));
}

void from_json(const nlohmann::json& json, ReceiptSnapshot& snapshot) {
    std::vector<std::string> identifiers;
    Json::read(json, "packageIDs", identifiers);
    snapshot.packageIDs = {identifiers.begin(), identifiers.end()};
}

}  // namespace tarvik
