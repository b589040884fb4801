#include "Platform/Linux/TrashInfo.h"

#include <fmt/format.h>

#include <string_view>

namespace tarvik::TrashInfo {

namespace {

/// Bytes as in an address: what is no plain letter, digit or harmless sign becomes "%XX".
std::string percentEncoded(std::string_view bytes) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string result;
    for (const char byte : bytes) {
        if (plain.find(byte) != std::string_view::npos)
            result += byte;
        else
            result += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
    return result;
}

}  // namespace

std::string text(const fs::path& originalPath, std::time_t deletedAt) {
    std::tm local{};
    ::localtime_r(&deletedAt, &local);
    return fmt::format("[Trash Info]\nPath={}\nDeletionDate={:04}-{:02}-{:02}T{:02}:{:02}:{:02}\n",
                       percentEncoded(originalPath.native()), local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                       local.tm_hour, local.tm_min, local.tm_sec);
}

}  // namespace tarvik::TrashInfo
