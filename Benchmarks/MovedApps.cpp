#include "MovedApps.h"

#include "Platform/Machine/AppStorageNames.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <fmt/format.h>

namespace tarvik {

namespace {

constexpr std::int64_t roomForThem = 4'000'000'000;
constexpr int apps = 500;
constexpr int filesOfAnApp = 400;
constexpr int filesOfAFolder = 20;
constexpr int vendors = 200;
constexpr int linksOfAVendor = 10;

}  // namespace

MovedApps::MovedApps()
    : m_volume(test::RealVolume::ext4(m_folder.path(), roomForThem)),
      m_root(m_volume / "machine"),
      m_home(m_root / "Users/ada"),
      m_drive(m_root / "Volumes/Drive"),
      m_host(Host::rootedAt(m_root, m_home)) {
    test::makeFolder(m_root / "Applications");
    for (int number = 0; number < apps; ++number) makeApp(fmt::format("App {}.app", number));
    for (int number = 0; number < vendors; ++number) makeData(number);
    m_host.tools.codesign = m_host.tools.xcrun = m_host.tools.spctl = m_root / "no tool";
}

void MovedApps::makeApp(const std::string& name) {
    const fs::path bundle = AppStorageNames::appsRootOn(m_drive) / name;
    test::makeBundle(bundle);
    for (int file = 2; file < filesOfAnApp; ++file)
        test::makeFile(bundle / fmt::format("Contents/Resources/{}/{}", file / filesOfAFolder, file));
    test::makeLink(m_root / "Applications" / name, bundle);
    m_bundles.push_back(bundle);
}

/// Links to data on the drive at the second and third level, and deeper folders that nobody needs to open.
void MovedApps::makeData(int number) {
    const fs::path vendor = m_home / "Library/Application Support" / fmt::format("Vendor {}", number);
    for (int link = 0; link < linksOfAVendor; ++link) {
        const fs::path data = m_drive / fmt::format("ExternalTarvik/Data/{}/{}", number, link);
        test::makeFolder(data);
        test::makeLink(vendor / (link % 2 == 0 ? "" : "Caches") / fmt::format("Data {}", link), data);
    }
    for (int file = 0; file < filesOfAFolder; ++file)
        test::makeFile(vendor / fmt::format("Store/Deep/Deeper/{}", file));
}

std::vector<std::string> MovedApps::du() const {
    std::vector<std::string> words = {"du", "-s"};
    for (const fs::path& bundle : m_bundles) words.push_back(bundle);
    return words;
}

std::string MovedApps::heading(int rounds) const {
    return fmt::format("{} moved applications of {} files, {} data links, medians of {} rounds, caches warm", apps,
                       apps * filesOfAnApp, vendors * linksOfAVendor, rounds);
}

}  // namespace tarvik
