#include "ManyApps.h"

#include "Discovery/AppScanner.h"
#include "Measure.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Support/IconFiles.h"
#include "Support/Tree.h"

#include <fmt/format.h>

#include <stdexcept>

namespace tarvik {

namespace {

constexpr std::int64_t volumeBytes = 8'000'000'000;

/// A square picture that neither vanishes when it is packed nor stays as large as it was.
std::string png(int side) {
    const std::string script = R"(import random, struct, sys, zlib
side = int(sys.argv[1])
dice = random.Random(1)
rows = b''.join(b'\0' + b''.join(bytes((x * 255 // side, y * 255 // side, (x * y + dice.randrange(8)) % 256, 255))
                                  for x in range(side)) for y in range(side))
def chunk(kind, data):
    return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
sys.stdout.buffer.write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', side, side, 8, 6, 0, 0, 0))
                        + chunk(b'IDAT', zlib.compress(rows)) + chunk(b'IEND', b'')))";
    return Measure::program({"python3", "-c", script, std::to_string(side)}).output;
}

}  // namespace

ManyApps::ManyApps()
    : m_volume(test::RealVolume::ext4(m_folder.path(), volumeBytes)),
      m_machine(Practice::build(m_volume / "machine", {.apps = 500, .files = 20'000, .appFiles = 180'000})),
      m_host(Host::rootedAt(m_machine.root, m_machine.home)),
      m_entries(AppScanner::discoverMetadata(m_host)) {
    if (m_entries.size() < 500) throw std::runtime_error("The scan finds too few applications.");
}

std::vector<std::string> ManyApps::du() const {
    std::vector<fs::path> paths;
    for (const AppEntry& entry : m_entries) {
        paths.push_back(entry.bundlePath);
        paths.insert(paths.end(), entry.dataPaths.begin(), entry.dataPaths.end());
    }
    return command({"du", "-s"}, paths);
}

std::string ManyApps::heading(int rounds) const {
    return fmt::format("{} applications, {} files, {} folders, medians of {} rounds, caches warm", m_entries.size(),
                       m_machine.files, m_machine.folders, rounds);
}

void ManyApps::makeIcons() const {
    const std::string icon = test::iconFile({{"ic07", png(128)}, {"ic09", png(512)}});
    for (const AppEntry& entry : m_entries) {
        const fs::path contents = entry.bundlePath / "Contents";
        const auto description = PropertyList::dictionaryAt(contents / "Info.plist");
        auto list = *description.as<PropertyList::Dictionary>();
        if (list.empty()) continue;
        list["CFBundleIconFile"] = "AppIcon";
        test::makeFile(contents / "Info.plist", PropertyList(list).xml());
        test::makeFile(contents / "Resources/AppIcon.icns", icon);
    }
}

std::vector<std::string> ManyApps::command(std::vector<std::string> words, const std::vector<fs::path>& paths) {
    for (const fs::path& path : paths)
        if (const auto real = Files::resolved(path)) words.push_back(real->native());
    return words;
}

}  // namespace tarvik
