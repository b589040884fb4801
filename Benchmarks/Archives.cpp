#include "Archives.h"

#include "Installers/Opening/ZipCheck.h"
#include "Installers/Opening/ZipExpander.h"
#include "Measure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Practice/PracticeMachine.h"
#include "Support/RealVolume.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Table.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarvik::ArchiveSpeed {

namespace {

constexpr std::int64_t gigabyte = 1'000'000'000;
constexpr std::int64_t megabyte = 1'000'000;

/// A volume with an archive, and a folder that it is expanded into.
class Place {
public:
    Place()
        : m_volume(test::RealVolume::ext4(m_folder.path(), 12 * gigabyte)), m_host(Host::thisMachine(m_folder.path())) {
        m_host.temporary = m_volume / "tmp";
        Files::createFolder(m_host.temporary);
    }

    fs::path tree() const { return m_volume / "tree"; }
    fs::path archive() const { return m_volume / "archive.zip"; }
    const Host& host() const { return m_host; }

    void pack(const std::string& options) const {
        fs::remove(archive());
        Measure::program({"/bin/sh", "-c",
                          fmt::format("cd '{}' && zip -qry{} '{}' .", tree().native(), options, archive().native())});
    }
    /// What an expander is to find: nothing of the one before, and nothing that is still to be written.
    void prepare() const {
        for (const std::string& name : Files::names(m_host.temporary)) fs::remove_all(m_host.temporary / name);
        Files::flushVolume(m_volume.path());
    }

private:
    test::TemporaryFolder m_folder;
    test::RealVolume m_volume;
    Host m_host;
};

void compareExpanders(const Place& place, const std::string& figure, int rounds) {
    const std::string goal = place.host().temporary / "goal";
    std::vector<double> ours;
    std::vector<double> unzip;
    std::vector<double> sevenZip;
    for (int round = 0; round < rounds; ++round) {
        place.prepare();
        ours.push_back(Measure::seconds([&] { ZipExpander::expand(place.host(), place.archive()); }));
        place.prepare();
        unzip.push_back(Measure::program({"unzip", "-q", place.archive(), "-d", goal}).seconds);
        place.prepare();
        sevenZip.push_back(Measure::program({"7zz", "x", "-snld", place.archive(), "-o" + goal}).seconds);
    }
    Table::ratio(figure, ours, "unzip", unzip, "1.3");
    Table::ratio("", ours, "7zz x", sevenZip, "1.3");
    place.prepare();
    const auto tool = Measure::program({place.host().tools.ditto, "-x", "-k", place.archive(), goal});
    Table::line("  peak memory of the tool", fmt::format("{} MB", tool.peakMemory / megabyte), "", "", "", "60 MB");
}

}  // namespace

void measure(int rounds) {
    const Place place;
    const auto practice = Practice::build(place.tree(), {.apps = 0, .specialApps = false, .files = 60'000});
    Table::heading(fmt::format("Zip archives, medians of {} rounds; ext4 in an image file on the disk", rounds));
    place.pack("");
    compareExpanders(place, fmt::format("{} files, {} MB", practice.files, practice.bytes / megabyte), rounds);
    Table::milliseconds(
        "  of this, the look before", [&] { ZipCheck::of(place.archive()); }, rounds, "");
    fs::remove_all(place.tree());
    for (unsigned number = 0; number < 4; ++number)
        test::makeFileOfSize(place.tree() / std::to_string(number), 250 * megabyte, number);
    place.pack("1");
    compareExpanders(place, "4 files, 1,000 MB", rounds);
    Table::milliseconds(
        "  of this, the look before", [&] { ZipCheck::of(place.archive()); }, rounds, "");
}

}  // namespace tarvik::ArchiveSpeed
