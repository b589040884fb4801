#include "UninstallRun/UninstallJournalFile.h"

#include "Copying/ItemLock.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/SystemCalls.h"
#include "UninstallRun/UninstallSessionId.h"
#include "UninstallRun/UninstallSessionStore.h"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

constexpr const char* journalsFolder = ".journals";
constexpr std::string_view journalExtension = ".tsv";
/// Beside the record: what tells each item from others that come to its place.
constexpr const char* settledName = "items.tsv";
/// In bytes.
constexpr std::int64_t largestJournal = std::int64_t{8} * 1024 * 1024;
/// What is added for an item takes no more than what tells of it in the opening.
constexpr std::size_t largestOpening = largestJournal / 2;
constexpr int mostJournalsInASecond = 1000;

fs::path journalAt(const fs::path& root, std::string_view name) {
    return root / journalsFolder / fmt::format("{}{}", name, journalExtension);
}

/// @returns 0 or an errno value.
int writeTo(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

void flushFolderOf(const fs::path& file) {
    const FileDescriptor folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) SystemCalls::flushFile(folder.get());
}

/// Somebody who looks whether the journal is held holds it for a moment.
FileDescriptor lockOf(const fs::path& file) {
    constexpr auto pause = std::chrono::milliseconds(5);
    constexpr int mostTurns = 200;
    FileDescriptor lock = ItemLock::holdAlone(file);
    for (int turn = 0; !lock && turn < mostTurns && ItemLock::isHeld(file); ++turn) {
        std::this_thread::sleep_for(pause);
        lock = ItemLock::holdAlone(file);
    }
    return lock;
}

bool isUnderWay(const fs::path& file) {
    // Of two that look at one time, neither takes the other for a run.
    return !ItemLock::hold(file) && ItemLock::isHeld(file);
}

/// Empty when there is none.
std::string textOfJournal(const fs::path& file) {
    try {
        return Files::read(file, largestJournal);
    } catch (const FileError&) {
        return {};
    }
}

std::optional<UninstallJournal> readJournal(const fs::path& file) {
    return UninstallJournal::parsed(textOfJournal(file));
}

/// The names of all journals, without their extension.
std::vector<std::string> journalNames(const fs::path& root) {
    std::vector<std::string> names;
    for (const std::string& name : Files::names(root / journalsFolder))
        if (name.ends_with(journalExtension)) names.push_back(name.substr(0, name.size() - journalExtension.size()));
    return names;
}

bool hasRecord(const fs::path& root, const UninstallJournal& journal) {
    const auto session = journal.sessionId ? UninstallSessionStore::find(*journal.sessionId, root) : std::nullopt;
    return session && UninstallJournals::isRecordOf(*session, journal);
}

}  // namespace

UninstallJournalFile UninstallJournalFile::begin(const fs::path& root, const UninstallJournal& journal) {
    Files::createFolder(root / journalsFolder);
    const std::string opening = journal.opening();
    UninstallJournalFile file;
    const std::string base = UninstallSessionId::at(journal.startedAt);
    for (int number = 1; !file.m_file; ++number) {
        file.m_path = journalAt(root, number == 1 ? base : fmt::format("{}-{}", base, number));
        file.m_file = FileDescriptor(
            ::open(file.m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!file.m_file && (errno != EEXIST || number == mostJournalsInASecond))
            throw FileError("create", file.m_path, errno);
    }
    const bool isTooLarge = opening.size() > largestOpening || journal.items.size() > UninstallJournal::mostItems;
    file.m_lock = lockOf(file.m_path);
    int error = isTooLarge ? EFBIG : writeTo(file.m_file.get(), opening);
    if (!error) error = SystemCalls::flushFile(file.m_file.get());
    if (error) {
        ::unlink(file.m_path.c_str());
        throw FileError("write", file.m_path, error);
    }
    flushFolderOf(file.m_path);
    return file;
}

void UninstallJournalFile::note(std::string_view lines) noexcept {
    ignoringFailure([&] {
        if (m_isLineCut && writeTo(m_file.get(), UninstallJournal::endOfCutLine) != 0) return;
        m_isLineCut = writeTo(m_file.get(), lines) != 0;
    });
}

void UninstallJournalFile::flush() noexcept {
    ignoringFailure([&] { SystemCalls::flushFile(m_file.get()); });
}

bool UninstallJournalFile::isFound() const {
    return ItemLock::isHeldAt(m_path, m_file);
}

void UninstallJournalFile::settleIn(const fs::path& sessionFolder) noexcept {
    ignoringFailure([&] { Files::rename(m_path, sessionFolder / settledName); });
}

namespace UninstallJournals {

std::vector<Found> interrupted(const fs::path& root) {
    std::vector<Found> found;
    for (std::string& name : journalNames(root)) {
        const fs::path file = journalAt(root, name);
        if (isUnderWay(file)) continue;
        auto journal = readJournal(file);
        if (journal && !hasRecord(root, *journal)) found.push_back({std::move(name), std::move(*journal)});
    }
    return found;
}

bool isRecordOf(const AppUninstallSession& session, const UninstallJournal& journal) {
    using Seconds = std::chrono::duration<double>;
    constexpr Seconds rounding(1);  // Records and journals do not tell the time with the same precision.
    return journal.sessionId == session.id && session.appPath == journal.appPath &&
           Seconds(session.createdAt.time_since_epoch()) + rounding >= Seconds(journal.startedAt.time_since_epoch());
}

std::optional<UninstallJournal> ofSession(const fs::path& root, const std::string& id) {
    if (!UninstallSessionId::isOne(id)) return std::nullopt;
    if (const std::string name = UninstallSessionId::journalNameOf(id); !name.empty()) {
        const fs::path file = journalAt(root, name);
        return isUnderWay(file) ? std::nullopt : readJournal(file);
    }
    if (auto journal = readJournal(root / id / settledName)) return journal;
    const std::string line = UninstallJournal::lineOfSession(id);
    for (const std::string& name : journalNames(root)) {
        const std::string text = textOfJournal(journalAt(root, name));
        if (text.find(line) == std::string::npos) continue;
        auto journal = UninstallJournal::parsed(text);
        if (journal && journal->sessionId == id && hasRecord(root, *journal)) return journal;
    }
    return std::nullopt;
}

void settle(const fs::path& root) noexcept {
    ignoringFailure([&] {
        for (const std::string& name : journalNames(root)) {
            const fs::path file = journalAt(root, name);
            if (isUnderWay(file)) continue;
            const auto journal = readJournal(file);
            if (journal && hasRecord(root, *journal)) Files::rename(file, root / *journal->sessionId / settledName);
        }
    });
}

}  // namespace UninstallJournals

}  // namespace tarvik
