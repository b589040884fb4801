#include "hdiutil/EntrySpool.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <limits>

namespace tarvik::hdiutil {

namespace {

/// What stands in front of the texts of each entry. Read by nobody but the process that has written it.
struct Head {
    Entry::Type type;
    mode_t permissions;
    std::int64_t size;
    timespec modified;
    std::size_t pathLength;
    std::size_t attributeLength;
};

[[noreturn]] void failWithErrno() {
    throw Failure("hdiutil", 1, systemErrorText(errno));
}

}  // namespace

EntrySpool::EntrySpool() : m_file(std::tmpfile()) {
    if (!m_file) failWithErrno();
}

void EntrySpool::add(const Entry& entry) {
    constexpr std::int64_t block = 4096;
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / 4;
    const std::int64_t blocks = std::min(entry.size, most) / block + 1;
    m_neededBytes = std::min(most, m_neededBytes + blocks * block);
    const Head head = {entry.type,     entry.permissions, entry.size,
                       entry.modified, entry.path.size(), entry.attribute.size()};
    if (std::fwrite(&head, sizeof head, 1, m_file.get()) != 1 ||
        std::fwrite(entry.path.data(), 1, entry.path.size(), m_file.get()) != entry.path.size() ||
        std::fwrite(entry.attribute.data(), 1, entry.attribute.size(), m_file.get()) != entry.attribute.size())
        failWithErrno();
}

void EntrySpool::rewind() {
    if (std::fflush(m_file.get()) != 0 || std::fseek(m_file.get(), 0, SEEK_SET) != 0) failWithErrno();
}

bool EntrySpool::next(Entry& entry) {
    Head head{};
    if (std::fread(&head, sizeof head, 1, m_file.get()) != 1) {
        if (std::ferror(m_file.get())) failWithErrno();
        return false;
    }
    entry.type = head.type;
    entry.permissions = head.permissions;
    entry.size = head.size;
    entry.modified = head.modified;
    entry.path.resize(head.pathLength);
    entry.attribute.resize(head.attributeLength);
    if (std::fread(entry.path.data(), 1, head.pathLength, m_file.get()) != head.pathLength ||
        std::fread(entry.attribute.data(), 1, head.attributeLength, m_file.get()) != head.attributeLength)
        failWithErrno();
    return true;
}

}  // namespace tarvik::hdiutil
