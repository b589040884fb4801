#include "Practice/PracticeMachine.h"

#include "Platform/Failure.h"
#include "Platform/Files.h"
#include "Practice/Dice.h"
#include "Practice/TreeWriter.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>

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
};

constexpr std::array<Place, 10> places = {{
    {"Music/Logic Pro Library.bundle", 16, true},
    {"Library/Application Support/Claude", 14},
    {"Downloads", 10, false, false},
    {"Library/Developer/Xcode/DerivedData", 24},
    {"Documents", 14},
    {"Movies/Summer 2025", 3, false, false},
    {"Pictures", 6},
    {".config", 4},
    {"/Volumes/Backup/Archive 2024", 6},
    {"/Volumes/Studio Drive/Sessions", 3, true},
}};

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
        const auto size = fileSize(dice);
        writer.noise(folder / name, size, {}, fileMode(dice));
        // Relative, so that a machine is the same wherever it stands; now and then one that leads nowhere.
        if (dice.onceIn(15))
            writer.link(folder / fmt::format("Link {}", number), dice.onceIn(4) ? "gone/" + name : name);
    }
}

void addApp(TreeWriter& writer, Dice& dice, const fs::path& applications, std::size_t number) {
    const auto name = number < appNames.size()
                          ? std::string(appNames[number])
                          : fmt::format("{} {}", appNames[number % appNames.size()], number / appNames.size() + 1);
    const auto program = fmt::format("practice{}", number + 1);
    const auto contents = applications / (name + ".app") / "Contents";
    writer.file(contents / "Info.plist", fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>CFBundleExecutable</key>
    <string>{0}</string>
    <key>CFBundleIdentifier</key>
    <string>org.example.{0}</string>
    <key>CFBundleName</key>
    <string>{1}</string>
    <key>CFBundlePackageType</key>
    <string>APPL</string>
    <key>CFBundleShortVersionString</key>
    <string>{2}.{3}</string>
</dict>
</plist>
)",
                                                     program, name, 1 + dice.below(9), dice.below(20)));
    writer.file(contents / "PkgInfo", "APPL????");
    writer.file(contents / "MacOS" / program, fmt::format("#!/bin/sh\necho 'This is {}.'\n", name), 0755);
    writer.noise(contents / "Resources" / "Assets.car", fileSize(dice));
    writer.noise(contents / "Frameworks" / "Core.framework" / "Versions" / "A" / "Core", fileSize(dice), {}, 0755);
    writer.link(contents / "Frameworks" / "Core.framework" / "Versions" / "Current", "A");
    writer.link(contents / "Frameworks" / "Core.framework" / "Core", "Versions/Current/Core");
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
        addApp(writer, dice, machine.root / "Applications", number);

    std::size_t shares = 0;
    for (const auto& place : places) shares += place.share;
    std::size_t sharesBefore = 0;
    for (const auto& place : places) {
        const auto base = place.path.front() == '/' ? machine.root / place.path.substr(1) : machine.home / place.path;
        // Cut at the same points for every place: what rounding takes from one falls to the next.
        const auto first = options.files * sharesBefore / shares;
        sharesBefore += place.share;
        fill(writer, dice, base, place, options.files * sharesBefore / shares - first);
    }
    writer.finish();
    return machine;
}

}  // namespace tarvik::Practice
