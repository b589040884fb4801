#include "ditto/TreeCopier.h"

#include "ditto/Attributes.h"
#include "ditto/CopyCrew.h"
#include "ditto/ItemError.h"
#include "ditto/PassedOver.h"
#include "ditto/SelfCopy.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <vector>

namespace tarvik::ditto::TreeCopier {

namespace {

/// How many folders on the way down stay open. The others are opened again on the way up.
constexpr std::size_t openLevels = 16;
/// Small enough that two threads share the files of one folder, large enough that handing over costs nothing.
constexpr std::size_t batchSize = 16;
constexpr std::size_t listingSize = std::size_t{64} * 1024;

/// Finds what there is to copy, folder by folder, on one thread. Makes the folders itself and leaves the rest to the
/// crew.
class Walk {
public:
    Walk(CopyCrew& crew, Diagnostics& diagnostics)
        : m_crew(crew), m_diagnostics(diagnostics), m_listing(std::make_unique_for_overwrite<Listing>()) {}

    void copyFolder(const Item& root) {
        enter(root);
        while (!m_levels.empty()) {
            Level& level = m_levels.back();
            if (level.next == level.subfolders.size()) {
                leaveLast();
                continue;
            }
            // Entering moves the levels, but the name is wanted for as long as that takes.
            const std::string name = level.subfolders.c_str() + level.next;
            level.next += name.size() + 1;
            const auto parent = level.open;
            enter({*parent, name.c_str(), name.c_str()});
        }
    }

private:
    struct Level {
        std::shared_ptr<Folder> folder;
        /// Null while it is closed because many levels lie below.
        std::shared_ptr<OpenFolder> open;
        /// Each name ended by a zero byte.
        std::string subfolders;
        std::size_t next = 0;
    };
    struct Listing {
        alignas(dirent64) std::array<char, listingSize> bytes;
    };

    void enter(const Item& item) {
        std::shared_ptr<OpenFolder> open;
        if (!triesToCopy(m_diagnostics, [&] { open = openFolder(item); })) return;
        m_levels.push_back({open->folder, open, {}, 0});
        if (m_levels.size() > openLevels) m_levels[m_levels.size() - 1 - openLevels].open = nullptr;
        list(m_levels.back());
    }

    void leaveLast() {
        const Level last = std::move(m_levels.back());
        m_levels.pop_back();
        // The way up leads through the folder, so it is taken before that gets its permissions.
        if (!m_levels.empty() && !m_levels.back().open)
            m_levels.back().open = openParent(*last.open, m_levels.back().folder);
        triesToCopy(m_diagnostics, [&] { leave(*last.open); });
    }

    void list(Level& level) {
        Batch batch(level.open);
        while (hasListed(*level.open)) {
            for (const dirent64* entry : m_entries) {
                if (PassedOver::isByName(entry->d_name)) continue;
                const unsigned char type = typeOf(*level.open, *entry);
                if (PassedOver::isByType(type)) continue;
                if (type == DT_DIR) {
                    level.subfolders.append(entry->d_name, std::string_view(entry->d_name).size() + 1);
                    continue;
                }
                batch.add(type, entry->d_name);
                if (batch.size() == batchSize) m_crew.add(std::exchange(batch, Batch(level.open)));
            }
        }
        if (batch.size() > 0) m_crew.add(std::move(batch));
    }

    /// The same as `readListing`; what cannot be read ends the listing.
    bool hasListed(const OpenFolder& folder) {
        bool isMore = false;
        triesToCopy(m_diagnostics, [&] { isMore = readListing(folder); });
        return isMore;
    }

    /// Fills `m_entries` with the next ones. @returns false at the end.
    bool readListing(const OpenFolder& folder) {
        m_entries.clear();
        const ssize_t length = ::getdents64(folder.source.get(), m_listing->bytes.data(), listingSize);
        if (length < 0) throw ItemError(sourcePath(*folder.folder), errno);
        for (ssize_t at = 0; at < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(m_listing->bytes.data() + at);
            at += entry->d_reclen;
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") m_entries.push_back(entry);
        }
        // What was made one after the other lies together on the drive.
        std::sort(m_entries.begin(), m_entries.end(),
                  [](const dirent64* one, const dirent64* other) { return one->d_ino < other->d_ino; });
        return length > 0;
    }

    /// The type of one that cannot be told of is found out when it is copied.
    static unsigned char typeOf(const OpenFolder& folder, const dirent64& entry) {
        if (entry.d_type != DT_UNKNOWN) return entry.d_type;
        struct stat status {};
        if (::fstatat(folder.source.get(), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return DT_UNKNOWN;
        return static_cast<unsigned char>(IFTODT(status.st_mode));
    }

    CopyCrew& m_crew;
    Diagnostics& m_diagnostics;
    std::vector<Level> m_levels;
    std::unique_ptr<Listing> m_listing;
    std::vector<const dirent64*> m_entries;
};

/// An item as a folder to start from and a name in it.
struct Start {
    fs::path folder;
    std::string name;
};

Start startOf(const fs::path& path) {
    if (!path.has_filename()) return {path, "."};
    return {path.has_parent_path() ? path.parent_path() : ".", path.filename()};
}

fs::path withoutTrailingSlashes(const fs::path& path) {
    std::string text = path;
    while (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
}

/// What a path leads to when all links at its end are followed. It need not be there.
fs::path followed(const fs::path& path) {
    constexpr int mostLinks = 40;  // As many as the system follows.
    fs::path place = path;
    std::error_code error;
    for (int links = 0; links < mostLinks && fs::is_symlink(fs::symlink_status(place, error)); ++links)
        place = withoutTrailingSlashes(place.parent_path() / fs::read_symlink(place, error));
    return place;
}

FileDescriptor openStart(const fs::path& folder, const fs::path& path) {
    FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened) throw ItemError(path, errno);
    return opened;
}

std::shared_ptr<OpenFolder> openTop(const fs::path& source, const fs::path& destination) {
    auto top = std::make_shared<OpenFolder>();
    top->folder = std::make_shared<Folder>();
    top->folder->sourceName = source;
    top->folder->destinationName = destination;
    top->source = openStart(source, source);
    top->destination = openStart(destination, destination);
    struct stat status {};
    if (::fstat(top->destination.get(), &status) != 0) throw ItemError(destination, errno);
    top->folder->destinationDevice = status.st_dev;
    top->folder->handsDownAccessList = Attributes::handsDownAccessList(top->destination.get());
    return top;
}

void copyItem(const fs::path& source, const struct stat& status, const fs::path& target, Diagnostics& diagnostics) {
    SelfCopy::refuse(source, status, target);
    const Start from = startOf(source);
    const Start into = startOf(target);
    std::error_code error;
    fs::create_directories(into.folder, error);
    if (error) throw ItemError(into.folder, error.value());

    const auto top = openTop(from.folder, into.folder);
    HardLinks links(top);
    CopyCrew crew(links, diagnostics);
    const Item root{*top, from.name.c_str(), into.name.c_str()};
    try {
        if (S_ISDIR(status.st_mode)) {
            Walk(crew, diagnostics).copyFolder(root);
        } else {
            triesToCopy(diagnostics, [&] {
                ItemCopier(links, crew.stop()).copy(root, static_cast<unsigned char>(IFTODT(status.st_mode)));
            });
        }
    } catch (...) {
        crew.fail(std::current_exception());
    }
    crew.finish();
}

/// The source without links, for which the tool has a message of its own.
std::optional<fs::path> realSource(const fs::path& source, Diagnostics& diagnostics) {
    std::error_code error;
    fs::path real = fs::canonical(source, error);
    if (!error) return real;
    diagnostics.say(fmt::format("Cannot get the real path for source '{}'", source.native()));
    return std::nullopt;
}

/// Whether a file that is the only source is to go into a folder at `destination`, and not to be that itself. The page
/// of an older version says that a missing parent makes a folder of it; the later ones do not say what it makes.
bool isFolderToBe(const fs::path& destination, const fs::path& target) {
    const fs::path parent = target.parent_path();
    return !destination.has_filename() || (!parent.empty() && !fs::is_directory(parent));
}

}  // namespace

void copy(const std::vector<fs::path>& sources, const fs::path& destination, Diagnostics& diagnostics) {
    const fs::path target = followed(withoutTrailingSlashes(destination));
    for (const fs::path& source : sources) {
        const auto real = realSource(source, diagnostics);
        if (!real) continue;
        triesToCopy(diagnostics, [&] {
            struct stat status {};
            if (::lstat(real->c_str(), &status) != 0) throw ItemError(*real, errno);
            if (PassedOver::isByType(IFTODT(status.st_mode)) || PassedOver::isByName(real->filename().c_str())) return;
            const bool goesInto = !S_ISDIR(status.st_mode) &&
                                  (sources.size() > 1 || fs::is_directory(target) || isFolderToBe(destination, target));
            copyItem(*real, status, goesInto ? target / real->filename() : target, diagnostics);
        });
    }
}

}  // namespace tarvik::ditto::TreeCopier
