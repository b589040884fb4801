#include "Installers/Sessions/InstallerSession.h"

#include "Platform/Basics/FieldHash.h"
#include "Platform/Text/Json.h"

#include <utility>

namespace tarvik {

namespace {

InstallerSessionStatus statusOf(const std::optional<std::string>& text) {
    if (!text) return InstallerSessionStatus::done;
    const auto status = installerSessionStatusOf(*text);
    if (!status) Json::refuse("a status");
    return *status;
}

}  // namespace

InstallerSession InstallerSession::with(std::optional<InstallerSessionStatus> newStatus,
                                        std::optional<std::vector<std::string>> newActions,
                                        std::optional<std::vector<fs::path>> newPendingApps) const {
    InstallerSession copy = *this;
    if (newStatus) copy.status = *newStatus;
    if (newActions) copy.actions = std::move(*newActions);
    if (newPendingApps) copy.pendingExternalizeApps = std::move(*newPendingApps);
    return copy;
}

void to_json(nlohmann::json& json, const InstallerSession& session) {
    Json::write(json, "id", session.id);
    Json::write(json, "sourcePath", session.sourcePath);
    Json::write(json, "optionID", session.optionID);
    Json::writeReferenceDate(json, "createdAt", session.createdAt);
    Json::write(json, "actions", session.actions);
    Json::write(json, "changedPaths", session.changedPaths);
    Json::write(json, "newReceipts", session.newReceipts);
    Json::write(json, "status", std::string(textOf(session.status)));
    Json::write(json, "targetDrivePath", session.targetDrivePath);
    Json::write(json, "pendingExternalizeApps", session.pendingExternalizeApps);
}

void from_json(const nlohmann::json& json, InstallerSession& session) {
    Json::read(json, "id", session.id);
    Json::read(json, "sourcePath", session.sourcePath);
    Json::read(json, "optionID", session.optionID);
    Json::readReferenceDate(json, "createdAt", session.createdAt);
    Json::read(json, "actions", session.actions);
    Json::read(json, "changedPaths", session.changedPaths);
    Json::read(json, "newReceipts", session.newReceipts);
    std::optional<std::string> status;
    Json::read(json, "status", status);
    session.status = statusOf(status);
    std::optional<fs::path> drive;
    Json::read(json, "targetDrivePath", drive);
    session.targetDrivePath = drive.value_or(fs::path());
    std::optional<std::vector<fs::path>> pending;
    Json::read(json, "pendingExternalizeApps", pending);
    session.pendingExternalizeApps = std::move(pending).value_or(std::vector<fs::path>());
}

}  // namespace tarvik

std::size_t std::hash<tarvik::InstallerSession>::operator()(const tarvik::InstallerSession& session) const noexcept {
    return tarvik::FieldHash::of(session.id, session.sourcePath, session.optionID, session.createdAt, session.actions,
                                 session.changedPaths, session.newReceipts, session.status, session.targetDrivePath,
                                 session.pendingExternalizeApps);
}
