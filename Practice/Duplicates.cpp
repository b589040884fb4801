#include "Practice/Duplicates.h"

#include "Practice/Bundle.h"

#include <string>

namespace tarvik::Practice {

namespace {

struct DuplicatePlaces {
    explicit DuplicatePlaces(const Machine& machine)
        : applications(machine.root / "Applications"),
          own(machine.home / "Applications"),
          launchers(own / "Old Launchers"),
          drive(machine.drives.back()),
          missing(machine.root / "Volumes/Unplugged/ExternalTarvik/Apps") {}

    fs::path applications, own, launchers, drive, missing;
};

const std::string compass = "org.example.compass";

/// Without an identifier it is known by what it opens alone.
void addOldLauncher(TreeWriter& writer, const fs::path& launcher, const std::string& identifier,
                    const fs::path& target) {
    const std::string own = identifier.empty() ? identifier : identifier + ".externallauncher";
    write(writer, {launcher, own, "1.0", {}, "ExternalAppLauncher"});
    writer.file(launcher / "Contents/Resources/ExternalAppTarget.txt", target.native() + "\n");
}

/// One launcher leads to where the application was, one to where it is now.
void addReinstalled(TreeWriter& writer, const DuplicatePlaces& at) {
    const fs::path app = at.applications / "Compass.app";
    write(writer, {app, compass, "3.0"});
    addOldLauncher(writer, at.launchers / "Compass.app", compass, at.missing / "Compass.app");
    addOldLauncher(writer, at.launchers / "Compass Launcher.app", compass, app);

    write(writer, {at.applications / "Sextant.app", "org.example.sextant", "2.2"});
    addOldLauncher(writer, at.launchers / "Sextant.app", "org.example.sextant", at.missing / "Sextant.app");
}

/// What stays: each differs from the above in one thing.
void addLookalikes(TreeWriter& writer, const DuplicatePlaces& at) {
    // Two launchers, and no real application.
    for (const char* name : {"Ghostly.app", "Ghostly 2.app"})
        addOldLauncher(writer, at.launchers / name, "org.example.ghostly", at.missing / "Ghostly.app");

    // The real one stands behind a link.
    const fs::path instruments = at.drive / "Instruments";
    write(writer, {instruments / "Astrolabe.app", "org.example.astrolabe", "1.1"});
    writer.link(at.own / "Instruments", instruments);
    addOldLauncher(writer, at.launchers / "Astrolabe.app", "org.example.astrolabe",
                   at.own / "Instruments/Astrolabe.app");

    // The launcher opens another copy, which is there.
    const fs::path other = at.drive / "Other Versions/Barometer.app";
    write(writer, {at.applications / "Barometer.app", "org.example.barometer", "5.0"});
    write(writer, {other, "org.example.barometer", "4.0"});
    addOldLauncher(writer, at.launchers / "Barometer.app", "org.example.barometer", other);

    // A link is no launcher.
    writer.link(at.launchers / "Barometer Link.app", other);

    // Nothing tells what it would be a launcher of.
    addOldLauncher(writer, at.launchers / "Anonymous.app", {}, at.missing / "Anonymous.app");
}

}  // namespace

void addDuplicates(TreeWriter& writer, const Machine& machine) {
    const DuplicatePlaces at(machine);
    addReinstalled(writer, at);
    addLookalikes(writer, at);
}

}  // namespace tarvik::Practice
