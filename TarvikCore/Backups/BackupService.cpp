#include "Backups/BackupService.h"

#include "Backups/BackupNames.h"
#include "Copying/ChangeWatch.h"
#include "Copying/FileCopier.h"
#include "Copying/FileStash.h"
#include "Copying/MoveVerifier.h"
#include "Copying/MoverError.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Notify.h"
#include "Platform/Files/AppleDouble.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Storage/DriveGuard.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Json.h"
#include "Platform/Text/LocalTime.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <string_view>

namespace tarvik::BackupService {

namespace {

constexpr std::string_view recordName = "backup.json";
/// Room for a record with the longest path, in bytes.
constexpr std::int64_t largestRecord = std::int64_t{64} * 1024;

std::string idAt(std::chrono::system_clock::time_point instant) {
    const auto time = LocalTime::at(instant);
    return fmt::format("{:04}{:02}{:02}_{:02}{:02}{:02}", time.year, time.month, time.day, time.hour, time.minute,
                       time.second);
}

struct Source {
    fs::path path;
    /// In bytes, for the progress alone.
    std::int64_t size = 0;
};

void throwIfStopped(const StopRequest& isAskedToStop, std::int64_t copied, std::int64_t count) {
    if (!isAskedToStop || !isAskedToStop()) return;
    const auto sentence = copied == 0 ? std::string("The backup was stopped before anything was copied.")
                                      : fmt::format("The backup was stopped after {} of {}. It is not complete.",
                                                    copied, Text::counted(count, "item"));
    throw Failure("BackupService", ECANCELED, sentence);
}

std::vector<Source> existing(const Host& host, const std::vector<fs::path>& paths, const StopRequest& isAskedToStop) {
    std::vector<Source> sources;
    for (const auto& path : paths) {
        throwIfStopped(isAskedToStop, 0, std::ssize(paths));
        const fs::path source = Files::standardized(path);
        if (!Files::exists(source)) continue;
        if (!source.has_filename()) throw FileError("back up", source, EINVAL);
        sources.push_back({source, SizeCalculator::size(host, source)});
    }
    return sources;
}

/// The tool may end well and have lost something: on a drive that takes two names for one, for instance.
void requireWhole(const Host& host, const Source& source, const fs::path& target, const ChangeWatch::Mark& start) {
    const auto reason = MoveVerifier::failureReasonSince(host, source.path, target, start);
    if (!reason) return;
    FileCopier::disposeOf(host, target);
    throw MoverError::verifyFailed(*reason);
}

/// Copies an item with the copy tool; a link as it stands, which the tool would follow (ditto(1)).
void copyTo(const Host& host, const Source& source, const fs::path& target, const DriveGuard& volume,
            const ProgressCallback& progress) {
    if (const auto text = Files::linkText(source.path)) return Files::createSymbolicLink(target, *text);
    const auto start = ChangeWatch::markUnflushed(source.path);
    FileCopier::copy(host, source.path, target, source.size, progress);
    volume.require(target.parent_path());
    requireWhole(host, source, target, start);
}

void copy(const Host& host, const Source& source, const fs::path& target, const DriveGuard& volume,
          const ProgressCallback& progress) {
    FileStash::moveAside(host, target, "backup-conflict");
    // The copy tool would merge into what could not be set aside.
    if (Files::itemExists(target)) throw FileError("replace", target, EEXIST);
    copyTo(host, source, target, volume, progress);
}

/// The instant that is read again from a written record: its numbers are not as fine as the clock.
BackupRecord asWritten(const BackupRecord& record) {
    return Json::decoded<BackupRecord>(Json::encoded(record));
}

std::optional<BackupRecord> recordIn(const fs::path& folder) {
    try {
        return Json::parsedAs<BackupRecord>(Files::read(folder / recordName, largestRecord));
    } catch (const FileError&) {
        return std::nullopt;
    }
}

/// Brings the record to the drive. One that may not have arrived would make a backup of what the user is told has
/// failed.
void write(const BackupRecord& record, const fs::path& folder) {
    const fs::path file = folder / recordName;
    Files::writeDurably(file, Json::compact(Json::encoded(record)));
    try {
        Files::flushVolume(folder);
    } catch (const FileError&) {
        ignoringFailure([&] { Files::removeItem(file); });
        throw;
    }
}

/// Makes the copies and the record.
BackupRecord fill(const Host& host, const fs::path& folder, const std::vector<Source>& sources,
                  const DriveGuard& volume, const ProgressCallback& progress, const StopRequest& isAskedToStop) {
    const KeptAwake awake(host, "A backup is being made");
    BackupRecord record{.id = folder.filename(), .rootPath = folder};
    std::int64_t total = 0;
    for (const auto& source : sources) total += source.size;
    std::int64_t done = 0;
    std::int64_t copies = 0;
    for (const auto& source : sources) {
        throwIfStopped(isAskedToStop, copies, std::ssize(sources));
        volume.require(folder);
        const fs::path target = folder / BackupNames::ofSource(source.path);
        copy(host, source, target, volume,
             [&](std::int64_t copied, std::int64_t) { notify(progress, done + copied, total); });
        BackupNames::sanitizeVisibleNames(host, target);
        record.sourceFileCount += countFiles(source.path);
        record.backupFileCount += countFiles(target);
        done += source.size;
        ++copies;
    }

    volume.require(folder);
    Files::flushVolume(folder);
    record.createdAt = host.now();
    write(record, folder);
    volume.require(folder / recordName);
    return asWritten(record);
}

}  // namespace

fs::path folderAt(const fs::path& drive, std::chrono::system_clock::time_point instant) {
    return AppStorageNames::backupsRootOn(Files::standardized(drive)) / idAt(instant);
}

BackupRecord create(const Host& host, const std::vector<fs::path>& sources, const fs::path& drive,
                    const ProgressCallback& progress, const StopRequest& isAskedToStop) {
    const fs::path folder = folderAt(drive, host.now());
    const DriveGuard volume(drive);
    const auto found = existing(host, sources, isAskedToStop);
    Files::createFolder(folder);
    return fill(host, folder, found, volume, progress, isAskedToStop);
}

BackupRecord createIn(const Host& host, const fs::path& folder, const std::vector<fs::path>& sources,
                      const DriveGuard& drive, const ProgressCallback& progress, const StopRequest& isAskedToStop) {
    const auto found = existing(host, sources, isAskedToStop);
    return fill(host, folder, found, drive, progress, isAskedToStop);
}

std::vector<BackupRecord> list(const Host& /*host*/, const fs::path& drive) {
    const fs::path root = AppStorageNames::backupsRootOn(drive);
    std::vector<BackupRecord> records;
    for (const auto& name : Files::names(root))
        if (auto record = recordIn(root / name)) records.push_back(std::move(*record));
    std::stable_sort(records.begin(), records.end(),
                     [](const BackupRecord& one, const BackupRecord& other) { return one.id > other.id; });
    return records;
}

std::vector<std::string> unfinished(const Host& /*host*/, const fs::path& drive) {
    const fs::path root = AppStorageNames::backupsRootOn(drive);
    std::vector<std::string> found;
    for (const auto& name : Files::names(root))
        if (!name.starts_with('.') && Files::isFolder(root / name) && !recordIn(root / name)) found.push_back(name);
    return found;
}

std::int64_t countFiles(const fs::path& folder) {
    std::int64_t count = 0;
    TreeWalk walk(folder, {.order = TreeWalk::Order::any});
    while (walk.next())
        if (walk.event() == TreeWalk::Event::item && walk.type() != Files::ItemType::folder) ++count;
    // What a volume keeps for an item in a file of its own is no further item.
    return AppleDouble::areKeptAt(folder) ? count - AppleDouble::countIn(folder) : count;
}

}  // namespace tarvik::BackupService
