#include "Practice/TreeWriter.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <span>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::Practice {

namespace {

void writeAll(int descriptor, const fs::path& path, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw FileError("write", path, errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string littleEndian(std::uint32_t number, int bytes) {
    std::string text;
    for (int at = 0; at < bytes; ++at) text += static_cast<char>((number >> (8 * at)) & 0xFFU);
    return text;
}

}  // namespace

void TreeWriter::folder(const fs::path& path) {
    if (path == m_machine.root) return;
    if (::mkdir(path.c_str(), 0755) == 0) {
        if (::chmod(path.c_str(), 0755) != 0) throw FileError("set the permissions of", path, errno);
        m_folders.push_back(path);
        ++m_machine.folders;
        return;
    }
    if (errno == EEXIST) return;
    if (errno != ENOENT) throw FileError("create the folder", path, errno);
    folder(path.parent_path());
    folder(path);
}

void TreeWriter::file(const fs::path& path, std::string_view content, mode_t mode) {
    noise(path, 0, content, mode);
}

void TreeWriter::noise(const fs::path& path, std::int64_t size, std::string_view head, mode_t mode) {
    folder(path.parent_path());
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) throw FileError("create", path, errno);
    writeAll(file.get(), path, head);
    std::array<std::uint64_t, 8192> block;
    for (std::int64_t left = size; left > 0;) {
        const auto part = std::min<std::int64_t>(left, sizeof block);
        for (auto& word : std::span(block).first(static_cast<std::size_t>(part + 7) / 8)) word = m_dice.next();
        writeAll(file.get(), path, {reinterpret_cast<const char*>(block.data()), static_cast<std::size_t>(part)});
        left -= part;
    }
    const struct timespec moment = time();
    const struct timespec times[] = {moment, moment};
    if (::fchmod(file.get(), mode) != 0) throw FileError("set the permissions of", path, errno);
    if (::futimens(file.get(), times) != 0) throw FileError("set the time of", path, errno);
    ++m_machine.files;
    m_machine.bytes += size + static_cast<std::int64_t>(head.size());
}

void TreeWriter::sound(const fs::path& path, std::int64_t size) {
    const auto samples = static_cast<std::uint32_t>(size) & ~3U;  // whole frames of two 16-bit channels
    std::string head = "RIFF" + littleEndian(36 + samples, 4) + "WAVEfmt " + littleEndian(16, 4);
    head += littleEndian(1, 2) + littleEndian(2, 2) + littleEndian(44100, 4) + littleEndian(44100 * 4, 4);
    head += littleEndian(4, 2) + littleEndian(16, 2) + "data" + littleEndian(samples, 4);
    noise(path, samples, head);
}

void TreeWriter::link(const fs::path& path, const fs::path& target) {
    folder(path.parent_path());
    if (::symlink(target.c_str(), path.c_str()) != 0) throw FileError("create the link", path, errno);
    const struct timespec moment = time();
    const struct timespec times[] = {moment, moment};
    if (::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        throw FileError("set the time of", path, errno);
    ++m_machine.links;
}

void TreeWriter::damage(const fs::path& path) {
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!file) throw FileError("open", path, errno);
    struct stat status {};
    char byte = 0;
    if (::fstat(file.get(), &status) != 0 || ::pread(file.get(), &byte, 1, 0) != 1)
        throw FileError("read", path, errno);
    byte = static_cast<char>(byte ^ 1);
    if (::pwrite(file.get(), &byte, 1, 0) != 1) throw FileError("write", path, errno);
    const timespec moment = SystemCalls::contentChangeTime(status);
    const struct timespec times[] = {moment, moment};
    if (::futimens(file.get(), times) != 0) throw FileError("set the time of", path, errno);
}

void TreeWriter::finish() {
    for (const auto& path : m_folders) {
        const struct timespec moment = time();
        const struct timespec times[] = {moment, moment};
        if (::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) throw FileError("set the time of", path, errno);
    }
    m_folders.clear();
}

/// A moment in the three years before 2026, with fractions of a second, which a careless copy loses.
struct timespec TreeWriter::time() {
    constexpr std::size_t newYear2026 = 1767225600;
    constexpr std::size_t threeYears = std::size_t{3} * 365 * 86400;
    struct timespec moment {};
    moment.tv_sec = static_cast<time_t>(newYear2026 - m_dice.below(threeYears));
    moment.tv_nsec = static_cast<long>(m_dice.below(1000000)) * 1000;
    return moment;
}

}  // namespace tarvik::Practice
