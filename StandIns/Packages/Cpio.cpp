#include "Packages/Cpio.h"

#include "Packages/PackageFailure.h"
#include "Packages/Unpacking.h"

#include <archive.h>
#include <archive_entry.h>

#include <cerrno>
#include <cstddef>
#include <exception>

namespace tarvik::packages {

namespace {

constexpr const char* damagedPayload = "The payload is damaged.";

struct ArchiveEnd {
    void operator()(archive* each) const { ::archive_read_free(each); }
};

SafeName::Components safeComponents(const char* name) {
    const auto components = name ? SafeName::components(name) : std::nullopt;
    if (!components)
        failUnsafe(std::string("The payload holds an item that would lie elsewhere: ") + (name ? name : ""));
    return *components;
}

}  // namespace

struct Cpio::State {
    ByteSource source;
    /// What the source has thrown, which must not pass through the library.
    std::exception_ptr failure;
    std::unique_ptr<archive, ArchiveEnd> reader{::archive_read_new()};
    archive_entry* current = nullptr;
    CpioEntry entry;

    static la_ssize_t read(archive* reader, void* data, const void** block) {
        auto* state = static_cast<State*>(data);
        try {
            const std::string_view bytes = state->source();
            *block = bytes.data();
            return static_cast<la_ssize_t>(bytes.size());
        } catch (...) {
            state->failure = std::current_exception();
            ::archive_set_error(reader, EIO, "%s", damagedPayload);
            return ARCHIVE_FATAL;
        }
    }

    [[noreturn]] void fail() const {
        if (failure) std::rethrow_exception(failure);
        failDamaged(damagedPayload);
    }

    void describe() {
        entry = {};
        const char* name = ::archive_entry_pathname(current);
        entry.path = safeComponents(name);
        entry.status = {.mode = ::archive_entry_perm(current),
                        .user = static_cast<uid_t>(::archive_entry_uid(current)),
                        .group = static_cast<gid_t>(::archive_entry_gid(current)),
                        .modified = std::chrono::system_clock::from_time_t(::archive_entry_mtime(current))};
        if (::archive_entry_size(current) < 0) fail();
        entry.size = static_cast<std::uint64_t>(::archive_entry_size(current));
        if (const char* original = ::archive_entry_hardlink(current)) {
            entry.type = CpioEntry::Type::hardLink;
            entry.original = safeComponents(original);
            return;
        }
        // Of a link it is the length of the text, which the library has read by now.
        if (::archive_entry_filetype(current) != AE_IFREG) entry.size = 0;
        switch (::archive_entry_filetype(current)) {
            case AE_IFREG:
                entry.type = CpioEntry::Type::file;
                break;
            case AE_IFDIR:
                entry.type = CpioEntry::Type::folder;
                break;
            case AE_IFLNK: {
                const char* target = ::archive_entry_symlink(current);
                if (!target || !*target) fail();
                entry.type = CpioEntry::Type::link;
                entry.target = target;
                break;
            }
            default:
                failUnsafe("The payload holds something that is no file, folder or link: " + std::string(name));
        }
    }
};

Cpio::Cpio(ByteSource packed) : m_state(std::make_unique<State>()) {
    m_state->source = recognizedSource(std::move(packed));
    archive* reader = m_state->reader.get();
    ::archive_read_support_format_cpio(reader);
    if (::archive_read_open(reader, m_state.get(), nullptr, State::read, nullptr) != ARCHIVE_OK) m_state->fail();
}

Cpio::Cpio(Cpio&&) noexcept = default;
Cpio& Cpio::operator=(Cpio&&) noexcept = default;
Cpio::~Cpio() = default;

bool Cpio::next() {
    const int result = ::archive_read_next_header(m_state->reader.get(), &m_state->current);
    if (result == ARCHIVE_EOF) {
        if (m_state->failure) m_state->fail();
        // To the end of the packed bytes, where their checksum is proved.
        for (std::string_view block = m_state->source(); !block.empty(); block = m_state->source())
            if (block.find_first_not_of('\0') != std::string_view::npos) failDamaged(damagedPayload);
        return false;
    }
    if (result != ARCHIVE_OK) m_state->fail();
    m_state->describe();
    return true;
}

const CpioEntry& Cpio::entry() const {
    return m_state->entry;
}

ByteSource Cpio::bytes() {
    struct Progress {
        std::uint64_t left;
    };
    auto progress = std::make_shared<Progress>(Progress{m_state->entry.size});
    return [state = m_state.get(), progress]() -> std::string_view {
        const void* block = nullptr;
        std::size_t size = 0;
        la_int64_t offset = 0;
        const int result = ::archive_read_data_block(state->reader.get(), &block, &size, &offset);
        if (result == ARCHIVE_EOF) {
            if (progress->left != 0) state->fail();
            return {};
        }
        if (result != ARCHIVE_OK || size > progress->left) state->fail();
        progress->left -= size;
        return {static_cast<const char*>(block), size};
    };
}

}  // namespace tarvik::packages
