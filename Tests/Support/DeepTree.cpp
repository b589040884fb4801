#include "Support/DeepTree.h"

#include <array>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::test {

namespace {

FileDescriptor openFolder(int parent, const char* name) {
    return FileDescriptor(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::string smallContentOf(int folder, const char* name) {
    const FileDescriptor file(::openat(folder, name, O_RDONLY | O_CLOEXEC));
    std::array<char, 64> bytes{};
    const ssize_t count = ::read(file.get(), bytes.data(), bytes.size());
    return count < 0 ? "" : std::string(bytes.data(), static_cast<std::size_t>(count));
}

}  // namespace

const std::string& DeepTree::levelName() {
    static const std::string name(255, 'd');
    return name;
}

void DeepTree::make() const {
    fs::create_directory(m_root);
    auto folder = openFolder(AT_FDCWD, m_root.c_str());
    for (int level = 0; level < m_levels; ++level) {
        const FileDescriptor file(::openat(folder.get(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
        const std::string text = std::to_string(level);
        const bool isWritten = ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
        if (!isWritten || ::mkdirat(folder.get(), levelName().c_str(), 0755) != 0)
            throw std::runtime_error("no deep tree");
        folder = openFolder(folder.get(), levelName().c_str());
    }
}

int DeepTree::intactLevels() const {
    auto folder = openFolder(AT_FDCWD, m_root.c_str());
    int level = 0;
    for (; folder && level < m_levels && smallContentOf(folder.get(), "file") == std::to_string(level); ++level)
        folder = openFolder(folder.get(), levelName().c_str());
    return level;
}

DeepTree::~DeepTree() {
    auto folder = openFolder(AT_FDCWD, m_root.c_str());
    int level = 0;
    for (;; ++level) {
        auto next = openFolder(folder.get(), levelName().c_str());
        if (!next) break;
        folder = std::move(next);
    }
    for (; level >= 0 && folder; --level) {
        ::unlinkat(folder.get(), "file", 0);
        auto parent = openFolder(folder.get(), "..");
        if (level > 0) ::unlinkat(parent.get(), levelName().c_str(), AT_REMOVEDIR);
        folder = std::move(parent);
    }
    ::rmdir(m_root.c_str());
}

}  // namespace tarvik::test
