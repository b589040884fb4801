#include "MovePlan/DriveChoice.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>

namespace tarvik::DriveChoice {

namespace {

enum Code { noneFits = 1, severalFit, noMountPath, notWritable, startsTheSystem };

Failure failure(Code code, std::string description) {
    return {"DriveChoice", code, std::move(description)};
}

std::string listOf(const std::vector<const DriveInfo*>& drives) {
    std::vector<std::string> entries;
    entries.reserve(drives.size());
    for (const auto* drive : drives) entries.push_back(fmt::format("{} ({})", drive->name, drive->mountPath.native()));
    return fmt::format("{}", fmt::join(entries, ", "));
}

/// The drive with the deepest mount path that holds `path`, but not the one that holds everything.
const DriveInfo* holderOf(const std::vector<DriveInfo>& drives, const fs::path& path) {
    const DriveInfo* holder = nullptr;
    for (const auto& drive : drives) {
        if (drive.isBoot() || !Files::isAtOrBelow(path, drive.mountPath)) continue;
        if (!holder || drive.mountPath.native().size() > holder->mountPath.native().size()) holder = &drive;
    }
    return holder;
}

/// Whether a path that was typed, or the same with links resolved, is the drive's mount path, by whatever spelling.
/// Another drive is not asked: it may be one that no longer answers.
bool standsAt(const DriveInfo& drive, const fs::path& written, const fs::path& resolved) {
    if (drive.mountPath == written || drive.mountPath == resolved) return true;
    return Text::nameKey(drive.mountPath.filename().native()) == Text::nameKey(resolved.filename().native()) &&
           Files::isSameItem(Files::info(drive.mountPath), Files::info(resolved));
}

}  // namespace

const DriveInfo& named(const std::vector<DriveInfo>& drives, std::string_view wanted) {
    const bool isPath = wanted.find('/') != std::string_view::npos;
    const auto written = isPath ? WrittenPath::meant(wanted) : fs::path();
    const auto path = Files::resolved(written).value_or(written);
    const std::string name = Text::composed(wanted);
    std::vector<const DriveInfo*> fitting;
    for (const auto& drive : drives)
        if (Text::composed(drive.name) == name || (isPath && standsAt(drive, written, path))) fitting.push_back(&drive);
    if (fitting.size() == 1) return *fitting.front();
    if (fitting.size() > 1)
        throw failure(severalFit, fmt::format("More than one drive is called \"{}\": {}. Name one by its mount path.",
                                              wanted, listOf(fitting)));

    if (const auto* holder = isPath ? holderOf(drives, path) : nullptr)
        throw failure(noMountPath,
                      fmt::format("\"{}\" is a place on the drive {}, not the drive itself. Its mount path is {}.",
                                  wanted, holder->name, holder->mountPath.native()));
    if (drives.empty())
        throw failure(noneFits, fmt::format("There is no drive \"{}\": no drives are mounted.", wanted));
    std::vector<const DriveInfo*> all;
    all.reserve(drives.size());
    for (const auto& drive : drives) all.push_back(&drive);
    throw failure(noneFits, fmt::format("There is no drive \"{}\". There is: {}.", wanted, listOf(all)));
}

bool canBeTarget(const DriveInfo& drive) {
    return drive.isWritable && !drive.isBoot();
}

void requireTarget(const DriveInfo& drive) {
    if (drive.isBoot())
        throw failure(startsTheSystem,
                      fmt::format("{} is the disk that the system starts from. Choose another drive.", drive.name));
    if (!drive.isWritable)
        throw failure(notWritable, fmt::format("{} is read-only. Choose another drive.", drive.name));
}

}  // namespace tarvik::DriveChoice
