#include "CommandLine/DriveActs.h"

#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Records.h"
#include "CommandLine/Output/Terminal.h"
#include "MovePlan/DriveChoice.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Text/Text.h"

#include <vector>

namespace tarvik::CommandLine::DriveActs {

namespace {

constexpr std::size_t widestName = 40;

std::string kindOf(const DriveInfo& drive) {
    if (drive.isBoot()) return "boot";
    return drive.isInternal ? "internal" : "external";
}

Record recordOf(const DriveInfo& drive) {
    return {
        {"name", drive.name},           {"mountPath", drive.mountPath.native()},   {"totalBytes", drive.totalBytes},
        {"freeBytes", drive.freeBytes}, {"format", drive.filesystem.value_or("")}, {"kind", kindOf(drive)},
        {"writable", drive.isWritable},
    };
}

std::string tableOf(const std::vector<DriveInfo>& drives) {
    using Columns::Align;
    // A capacity of 0 means that the system does not tell.
    const auto size = [](std::int64_t bytes, const DriveInfo& drive) {
        return drive.totalBytes == 0 ? std::string("unknown") : Text::byteCount(bytes);
    };
    std::vector<std::vector<std::string>> rows;
    rows.reserve(drives.size());
    for (const auto& drive : drives)
        rows.push_back({Columns::cut(Columns::oneLine(drive.name), widestName), size(drive.totalBytes, drive),
                        size(drive.freeBytes, drive), Columns::oneLine(drive.filesystem.value_or("")), kindOf(drive),
                        drive.isWritable ? "yes" : "no", Columns::oneLine(drive.mountPath.native())});
    // A mount path is shown whole, to be copied, and may be long: at the end it pushes nothing aside.
    return Columns::table(
        {{"Name"}, {"Size", Align::right}, {"Free", Align::right}, {"Format"}, {"Kind"}, {"Writable"}, {"Mounted at"}},
        rows);
}

}  // namespace

void list(const Host& host, Format format) {
    const auto drives = DriveScanner::scan(host);
    if (format == Format::human) {
        if (drives.empty()) return Terminal::say("No drives are mounted.");
        return Terminal::writeResult(tableOf(drives));
    }
    std::vector<Record> records;
    records.reserve(drives.size());
    for (const auto& drive : drives) records.push_back(recordOf(drive));
    if (format == Format::toml) return Terminal::writeResult(toml("drives", records));
    Terminal::writeResult(tsv(namesOf(recordOf({})), records));
}

DriveInfo named(const Host& host, const std::string& wanted, Options::Verb verb) {
    try {
        return DriveChoice::named(DriveScanner::scan(host), wanted);
    } catch (const Failure& failure) {
        throw WrongUse(failure.description(), std::string(usageOf(verb)));
    }
}

DriveInfo chosen(const Host& host, const std::string& wanted, Options::Verb verb) {
    auto drive = named(host, wanted, verb);
    DriveChoice::requireTarget(drive);
    return drive;
}

}  // namespace tarvik::CommandLine::DriveActs
