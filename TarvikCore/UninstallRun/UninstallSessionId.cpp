#include "UninstallRun/UninstallSessionId.h"

#include "Platform/Text/LocalTime.h"

#include <fmt/format.h>

#include <cstddef>

namespace tarvik::UninstallSessionId {

namespace {

constexpr std::string_view interruptedPrefix = "interrupted-";
constexpr std::size_t longest = 64;

}  // namespace

std::string at(std::chrono::system_clock::time_point instant) {
    const auto time = LocalTime::at(instant);
    return fmt::format("{:04}{:02}{:02}_{:02}{:02}{:02}", time.year, time.month, time.day, time.hour, time.minute,
                       time.second);
}

std::string ofInterrupted(std::string_view journalName) {
    return fmt::format("{}{}", interruptedPrefix, journalName);
}

std::string journalNameOf(std::string_view id) {
    return id.starts_with(interruptedPrefix) ? std::string(id.substr(interruptedPrefix.size())) : std::string();
}

bool isOne(std::string_view text) {
    constexpr std::string_view allowed = "0123456789_-abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    return !text.empty() && text.size() <= longest && text.find_first_not_of(allowed) == std::string_view::npos;
}

}  // namespace tarvik::UninstallSessionId
