#include "Installers/Install/SourceWatch.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/FileSystemStatus.h"
#include "Platform/Files/SystemCalls.h"

#include <fmt/format.h>

#include <utility>

namespace tarvik {

namespace {

bool isOnReadOnlyVolume(const fs::path& source) {
    const auto volume = fileSystemStatus(source);
    return volume && volume->isReadOnly;
}

ChangeWatch::Mark markOf(const fs::path& source, SourceWatch::Depth depth) {
    return depth == SourceWatch::Depth::mappedWrites ? ChangeWatch::mark(source) : ChangeWatch::markUnflushed(source);
}

std::optional<struct stat> rootStatus(const fs::path& source) {
    struct stat status {};
    return ::lstat(source.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

bool isUnchanged(const std::optional<struct stat>& before, const std::optional<struct stat>& now) {
    if (!before || !now) return false;
    const timespec first = SystemCalls::statusChangeTime(*before);
    const timespec second = SystemCalls::statusChangeTime(*now);
    return before->st_dev == now->st_dev && before->st_ino == now->st_ino && first.tv_sec == second.tv_sec &&
           first.tv_nsec == second.tv_nsec;
}

}  // namespace

SourceWatch::SourceWatch(fs::path source, Depth depth)
    : m_source(std::move(source)),
      m_isReadOnly(isOnReadOnlyVolume(m_source)),
      m_start(m_isReadOnly ? ChangeWatch::Mark{} : markOf(m_source, depth)),
      m_status(rootStatus(m_source)) {}

std::optional<std::string> SourceWatch::reasonAgainstCopy(const Host& host) const {
    if (m_isReadOnly) return std::nullopt;
    fs::path changed = m_source.filename();
    try {
        const bool isRootUnchanged = isUnchanged(m_status, rootStatus(m_source));
        if (isRootUnchanged && !S_ISDIR(m_status->st_mode)) return std::nullopt;
        const auto inside = isRootUnchanged ? ChangeWatch::changedInside(host, m_source, m_start) : fs::path();
        if (!inside) return std::nullopt;
        if (!inside->empty()) changed /= *inside;
    } catch (const FileError& error) {
        return error.description();
    }
    return fmt::format("{} was changed while it was copied.", changed.native());
}

}  // namespace tarvik
