#include "Practice/PracticeMachine.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Practice/Bundle.h"
#include "Practice/Dice.h"
#include "Practice/DriftedItems.h"
#include "Practice/Duplicates.h"
#include "Practice/InstallerSamples.h"
#include "Practice/Records.h"
#include "Practice/SpecialApps.h"
#include "Practice/TreeWriter.h"
#include "Practice/UninstallSamples.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::Practice {

namespace {

constexpr std::string_view userName = "robin";
constexpr std::array<std::string_view, 2> driveNames = {"Backup", "Studio Drive"};

/// A folder that the mixed files are spread over.
struct Place {
    std::string_view path;  ///< below the home, or below the root when it begins with "/"
    std::size_t share;      ///< of all files, in parts of the sum of all shares
    bool holdsSounds = false;
    bool isNested = true;
    bool holdsSmallFiles = false;
    /// Its links lead somewhere: the health check tells of those that do not.
    bool isAppData = false;
};

constexpr std::array<Place, 10> places = {{
    {"Music/Logic Pro Library.bundle", 16, true},
    {.path = "Library/Application Support/Claude", .share = 14, .isAppData = true},
    {"Downloads", 10, false, false},
    {"Library/Developer/Xcode/DerivedData", 24},
    {"Documents", 14},
    {"Movies/Summer 2025", 3, false, false},
    {"Pictures", 6},
    {".config", 4},
    {"/Volumes/Backup/Archive 2024", 6},
    {"/Volumes/Studio Drive/Sessions", 3, true},
}};

/// Where an application's own files are: below its bundle, or below the home by its name or its identifier.
constexpr Place inBundle = {"Contents/Resources", 12, false, true, true};
constexpr Place inSupport = {
    .path = "Library/Application Support", .share = 6, .holdsSmallFiles = true, .isAppData = true};
constexpr Place inCaches = {"Library/Caches", 2, false, true, true};

constexpr std::array<std::string_view, 24> words = {
    "Invoice", "Notes", "Draft",  "Résumé",          "Größe", "写真",   "Проект", "naïve",
    "Budget",  "Map",   "Letter", "Index",           "Cache", "Module", "Report", "Drum Kit",
    "Strings", "Brass", "λ-calc", "e\u0301te\u0301", "Menu",  "Trip",   "Photo",  "Scan 🎹"};
constexpr std::array<std::string_view, 14> endings = {".txt", ".pdf", ".json", ".md", ".plist",  ".o",   ".swift",
                                                      ".png", ".db",  ".log",  "",    ".tar.gz", ".mov", ".dat"};
constexpr std::array<std::string_view, 12> appNames = {"Sketchpad", "Tunesmith", "Ledger",       "Starmap",
                                                       "Quill",     "Darkroom",  "Gridworks",    "Postbox",
                                                       "Flipbook",  "Metronome", "Cartographer", "Lathe"};

/// From nothing to some MB, half of all at most 3 KB, a few large ones with most of the bytes: as in a real home. Whole
/// numbers only: what a library makes of a logarithm differs from system to system.
std::int64_t fileSize(Dice& dice) {
    if (dice.onceIn(20)) return 0;
    std::size_t exponent = 1;
    for (int roll = 0; roll < 7; ++roll) exponent += dice.below(4);
    const std::size_t power = std::size_t{1} << exponent;
    return static_cast<std::int64_t>(power + dice.below(power));
}

constexpr std::int64_t smallFileLimit = 8192;

mode_t fileMode(Dice& dice) {
    constexpr std::array<mode_t, 8> modes = {0644, 0644, 0644, 0644, 0600, 0755, 0444, 0664};
    return dice.oneOf(modes);
}

/// Fills one place with `count` files, in folders of its own where it is nested, and with links among them.
void fill(TreeWriter& writer, Dice& dice, const fs::path& base, const Place& place, std::size_t count) {
    writer.folder(base);
    fs::path folder = base;
    int depth = 0;
    for (std::size_t number = 1; number <= count; ++number) {
        const bool turns = place.isNested && dice.onceIn(6);
        if (turns && depth < 6 && !dice.onceIn(3)) {
            folder /= fmt::format("{}{} {}", dice.onceIn(10) ? "." : "", dice.oneOf(words), number);
            writer.folder(folder);
            ++depth;
        } else if (turns) {
            folder = base;
            depth = 0;
        }
        // The number makes each name the only one.
        if (place.holdsSounds && !dice.onceIn(5)) {
            writer.sound(folder / fmt::format("{} {:04}.wav", dice.oneOf(words), number),
                         static_cast<std::int64_t>(16384 + dice.below(131072)));
            continue;
        }
        const auto name =
            fmt::format("{}{} {}{}", dice.onceIn(12) ? "." : "", dice.oneOf(words), number, dice.oneOf(endings));
        const auto size = place.holdsSmallFiles ? std::min(fileSize(dice), smallFileLimit) : fileSize(dice);
        writer.noise(folder / name, size, {}, fileMode(dice));
        // Relative, so that a machine is the same wherever it stands; now and then one that leads nowhere.
        if (dice.onceIn(15))
            writer.link(folder / fmt::format("Link {}", number),
                        dice.onceIn(4) && !place.isAppData ? "gone/" + name : name);
    }
}

/// What the plain application of a number is called.
struct PlainApp {
    explicit PlainApp(std::size_t number)
        : name(number < appNames.size()
                   ? std::string(appNames[number])
                   : fmt::format("{} {}", appNames[number % appNames.size()], number / appNames.size() + 1)),
          program(fmt::format("practice{}", number + 1)),
          identifier("org.example." + program) {}

    std::string name;
    std::string program;
    std::string identifier;
};

void addApp(TreeWriter& writer, Dice& dice, const fs::path& applications, const PlainApp& app) {
    const auto path = applications / (app.name + ".app");
    const auto major = 1 + dice.below(9);
    const auto minor = dice.below(20);
    write(writer, {path, app.identifier, fmt::format("{}.{}", major, minor), {}, app.program});
    const auto contents = path / "Contents";
    writer.noise(contents / "Resources" / "Assets.car", fileSize(dice));
    writer.noise(contents / "Frameworks" / "Core.framework" / "Versions" / "A" / "Core", fileSize(dice), {}, 0755);
    writer.link(contents / "Frameworks" / "Core.framework" / "Versions" / "Current", "A");
    writer.link(contents / "Frameworks" / "Core.framework" / "Core", "Versions/Current/Core");
}

/// A folder to fill.
struct Part {
    fs::path base;
    const Place* place;
};

std::vector<Part> partsOfApps(const Machine& machine, std::size_t apps) {
    std::vector<Part> parts;
    for (std::size_t number = 0; number < apps; ++number) {
        const PlainApp app(number);
        parts.push_back({machine.root / "Applications" / (app.name + ".app") / inBundle.path, &inBundle});
        parts.push_back({machine.home / inSupport.path / app.name, &inSupport});
        parts.push_back({machine.home / inCaches.path / app.identifier, &inCaches});
    }
    return parts;
}

void spread(TreeWriter& writer, Dice& dice, const std::vector<Part>& parts, std::size_t files) {
    std::size_t shares = 0;
    for (const auto& part : parts) shares += part.place->share;
    std::size_t sharesBefore = 0;
    for (const auto& part : parts) {
        // Cut at the same points for every part: what rounding takes from one falls to the next.
        const auto first = files * sharesBefore / shares;
        sharesBefore += part.place->share;
        fill(writer, dice, part.base, *part.place, files * sharesBefore / shares - first);
    }
}

}  // namespace

Machine build(const fs::path& folder, const Options& options) {
    Machine machine;
    machine.root = Files::standardized(folder);
    if (Files::itemExists(machine.root) && !Files::infoFollowingLinks(machine.root))
        throw Failure("Practice", 1, fmt::format("{} is a link that leads nowhere.", machine.root.native()));
    Files::createFolder(machine.root);
    if (!Files::names(machine.root).empty())
        throw Failure(
            "Practice", 1,
            fmt::format("{} is not empty: a practice machine needs a folder of its own.", machine.root.native()));
    machine.home = machine.root / "Users" / userName;
    for (const auto name : driveNames) machine.drives.push_back(machine.root / "Volumes" / name);

    Dice dice(options.seed);
    TreeWriter writer(Dice(dice.next()), machine);
    for (const auto* name : {"Applications", "Library/Application Support", "System/Library"})
        writer.folder(machine.root / name);
    for (const auto& drive : machine.drives) writer.folder(drive);
    for (const auto* name : {"Desktop", "Library/Caches", "Library/Preferences"}) writer.folder(machine.home / name);
    for (std::size_t number = 0; number < options.apps; ++number)
        addApp(writer, dice, machine.root / "Applications", PlainApp(number));
    if (options.specialApps || options.broken) {
        Records records;
        addSpecialApps(writer, machine, records);
        addUninstallSamples(writer, machine);
        addDuplicates(writer, machine);
        addInstallerSamples(writer, machine);
        if (options.broken) addDriftedItems(writer, machine, records);
        records.write(writer, machine);
    }

    std::vector<Part> parts;
    parts.reserve(places.size());
    for (const auto& place : places)
        parts.push_back(
            {place.path.front() == '/' ? machine.root / place.path.substr(1) : machine.home / place.path, &place});
    spread(writer, dice, parts, options.files);
    if (options.appFiles > 0) spread(writer, dice, partsOfApps(machine, options.apps), options.appFiles);
    writer.finish();
    return machine;
}

}  // namespace tarvik::Practice
