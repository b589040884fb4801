#include "hdiutil/VolumeStream.h"

#include "Platform/Basics/Failure.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarvik::hdiutil {

namespace {

using Type = Entry::Type;

/// No link leads further, and Linux keeps no larger attribute.
constexpr std::int64_t longestText = 65536;

[[noreturn]] void failAsDamaged() {
    throw Failure("hdiutil", 1, "corrupt image");
}

}  // namespace

VolumeStream::VolumeStream(EntrySpool& entries, std::string container, VolumeWriter& writer)
    : m_entries(entries), m_container(std::move(container)), m_writer(writer) {}

void VolumeStream::take(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!m_isUnderWay && !nextEntry()) failAsDamaged();
        const auto length =
            static_cast<std::size_t>(std::min<std::uint64_t>(static_cast<std::uint64_t>(m_missing), bytes.size()));
        const std::string_view part = bytes.substr(0, length);
        if (m_isKept && m_entry.type == Type::file) m_writer.write(part);
        if (m_isKept && (m_entry.type == Type::link || m_entry.type == Type::attribute)) m_text += part;
        bytes.remove_prefix(length);
        m_missing -= static_cast<std::int64_t>(length);
        if (m_missing == 0) endEntry();
    }
}

void VolumeStream::end() {
    if (m_isUnderWay) failAsDamaged();
    while (nextEntry())
        if (m_missing > 0) failAsDamaged();
}

/// Goes to the next entry that has bytes; those without any are done on the way.
bool VolumeStream::nextEntry() {
    while (m_entries.next(m_entry)) {
        beginEntry();
        if (m_missing > 0) return true;
        endEntry();
    }
    return false;
}

void VolumeStream::beginEntry() {
    m_isUnderWay = true;
    m_missing = m_entry.type == Type::folder ? 0 : m_entry.size;
    m_text.clear();
    const std::string& path = m_entry.path;
    m_isKept = m_container.empty() || path == m_container ||
               (path.size() > m_container.size() && path.starts_with(m_container) && path[m_container.size()] == '/');
    if (!m_isKept) return;
    m_path = m_container.empty() ? path : path.substr(std::min(path.size(), m_container.size() + 1));
    if (m_entry.type == Type::attribute && m_missing > longestText) m_isKept = false;
    if (m_entry.type == Type::link && m_missing > longestText) failAsDamaged();
    if (m_entry.type == Type::file) m_writer.open(m_entry, m_path);
}

void VolumeStream::endEntry() {
    m_isUnderWay = false;
    if (!m_isKept) return;
    switch (m_entry.type) {
        case Type::file:
            return m_writer.close();
        case Type::link:
            return m_writer.link(m_entry, m_path, m_text);
        case Type::attribute:
            return m_writer.attribute(
                m_path, m_entry.attribute == "rsrc" ? "com.apple.ResourceFork" : m_entry.attribute, m_text);
        case Type::folder:
        case Type::other:
            return m_writer.add(m_entry, m_path);
    }
}

}  // namespace tarvik::hdiutil
