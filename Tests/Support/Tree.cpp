#include "Support/Tree.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarvik::test {

namespace {

std::string digestOf(const std::string& bytes) {
    std::uint64_t hash = 1469598103934665603U;  // FNV-1a
    for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    return fmt::format("{:016x}", hash);
}

void addLines(const fs::path& item, const std::string& relative, std::vector<std::string>& lines) {
    const struct stat status = statusOf(item);
    const unsigned permissions = status.st_mode & 07777U;
    if (S_ISLNK(status.st_mode)) {
        lines.push_back(fmt::format("link {} -> {}", relative, fs::read_symlink(item).native()));
    } else if (S_ISREG(status.st_mode)) {
        lines.push_back(
            fmt::format("file {:o} {} {} {}", permissions, relative, status.st_size, digestOf(contentOf(item))));
    } else if (S_ISDIR(status.st_mode)) {
        lines.push_back(fmt::format("folder {:o} {}", permissions, relative));
        for (const auto& entry : fs::directory_iterator(item))
            addLines(entry.path(), relative + "/" + entry.path().filename().native(), lines);
    } else {
        lines.push_back(fmt::format("other {:o} {}", status.st_mode & static_cast<unsigned>(S_IFMT), relative));
    }
}

}  // namespace

void makeFile(const fs::path& path, std::string_view content) {
    if (path.has_parent_path()) fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path.native());
}

void makeFileOfSize(const fs::path& path, std::size_t size, unsigned seed) {
    std::string bytes(size, '\0');
    std::uint32_t state = seed * 2654435761U + 1U;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    makeFile(path, bytes);
    flush(path);
}

void flush(const fs::path& file) {
    const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!opened || SystemCalls::flushFile(opened.get()) != 0) throw std::runtime_error("cannot flush " + file.native());
}

bool comesToStand(const fs::path& path) {
    const auto begin = std::chrono::steady_clock::now();
    while (!fs::exists(fs::symlink_status(path))) {
        if (std::chrono::steady_clock::now() - begin > std::chrono::minutes(1)) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void makeFolder(const fs::path& path) {
    fs::create_directories(path);
}

void makeLink(const fs::path& link, const fs::path& target) {
    fs::create_directories(link.parent_path());
    fs::create_symlink(target, link);
}

void makeSocket(const fs::path& path) {
    fs::create_directories(path.parent_path());
    if (::mknod(path.c_str(), S_IFSOCK | 0600, 0) != 0)
        throw std::runtime_error("cannot make a socket at " + path.native());
}

void makePipe(const fs::path& path) {
    fs::create_directories(path.parent_path());
    if (::mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make a pipe at " + path.native());
}

struct stat statusOf(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) throw std::runtime_error("cannot look at " + path.native());
    return status;
}

std::string contentOf(const fs::path& path) {
    return Files::read(path);
}

std::string pictureOf(const fs::path& root) {
    std::vector<std::string> lines;
    addLines(root, ".", lines);
    std::sort(lines.begin(), lines.end());
    std::string picture;
    for (const auto& line : lines) picture += line + "\n";
    return picture;
}

}  // namespace tarvik::test
