#include "Installers/Inspection/ContentKindSniffer.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Text.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace tarvik::ContentKindSniffer {

namespace {

constexpr std::size_t sniffedBytes = 256;

}  // namespace

std::optional<InstallerKind> sniff(const fs::path& path) {
    const auto info = Files::infoFollowingLinks(path);
    if (!info || info->type != Files::ItemType::regular) return std::nullopt;
    // Nor does it wait for a pipe that has come to stand there since.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file) return std::nullopt;
    std::array<char, sniffedBytes> buffer{};
    ssize_t length = 0;
    do length = ::read(file.get(), buffer.data(), buffer.size());
    while (length < 0 && errno == EINTR);
    if (length <= 0) return std::nullopt;
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(length));
    if (!Text::isValidUtf8(bytes) || !bytes.starts_with("#!")) return std::nullopt;
    return InstallerKind::script;
}

}  // namespace tarvik::ContentKindSniffer
