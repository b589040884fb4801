#include "Practice/Records.h"

#include "Platform/Text/Json.h"

#include <fmt/format.h>

#include <chrono>
#include <cstddef>
#include <utility>

namespace tarvik::Practice {

namespace {

constexpr auto movedAt = std::chrono::sys_days{std::chrono::year{2026} / 11 / 15} + std::chrono::hours{17};

}  // namespace

void Records::addMove(const fs::path& source, const fs::path& destination, const std::string& identifier,
                      std::int64_t bytes, std::vector<fs::path> files) {
    m_moves.push_back({source, destination, identifier, bytes, movedAt});
    m_installs.push_back({fmt::format("tarvik-00000000-0000-0000-0000-{:012}", m_moves.size()),
                          source.filename().native(), identifier, "app_move", "2026-11-15T17:00:00Z",
                          std::move(files)});
}

void Records::addInstall(std::string_view app, std::optional<std::string> identifier, std::string_view type,
                         std::vector<fs::path> files) {
    const std::size_t number = m_installs.size() + 1;
    m_installs.push_back({fmt::format("setupbook-{}", number), std::string(app), std::move(identifier),
                          std::string(type), fmt::format("2026-03-{:02}T09:00:00Z", number), std::move(files)});
}

void Records::write(TreeWriter& writer, const Machine& machine) const {
    writer.file(machine.home / "Library/Application Support/Tarvik/health-manifest.json",
                Json::pretty(Json::encoded(m_moves)));
    writer.file(machine.home / ".claude/tools/setupbook/db/installs.db", TrackingDatabase::bytes(m_installs));
}

}  // namespace tarvik::Practice
