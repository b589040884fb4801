#include "Practice/UninstallSamples.h"

#include "Platform/Text/PropertyList.h"
#include "Practice/Bundle.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace tarvik::Practice {

namespace {

constexpr const char* vendorNotice = "Copyright \u00A9 2026 Practice Craft";

std::string craftIdentifier(std::string_view word) {
    return fmt::format("net.practicecraft.{}", word);
}

std::string preferencesOf(std::string_view theme) {
    return PropertyList(PropertyList::Dictionary{{"Theme", std::string(theme)}}).binary();
}

/// What tells the system to start a program.
std::string startOf(const std::string& label, const std::string& program) {
    return PropertyList(PropertyList::Dictionary{{"Label", label},
                                                 {"ProgramArguments", PropertyList::List{program, "--background"}}})
        .xml();
}

void addReceipt(TreeWriter& writer, const Machine& machine, const std::string& identifier, std::string_view bill) {
    const fs::path receipts = machine.root / "private/var/db/receipts";
    const PropertyList list = PropertyList::Dictionary{{"InstallPrefixPath", "Applications"},
                                                       {"InstallProcessName", "installer"},
                                                       {"PackageFileName", "Loom.pkg"},
                                                       {"PackageIdentifier", identifier},
                                                       {"PackageVersion", "3.2"}};
    writer.file(receipts / (identifier + ".plist"), list.binary());
    writer.file(receipts / (identifier + ".bom"), bill);
}

/// What one program keeps in the user's home.
void addHomeOfLoom(TreeWriter& writer, const fs::path& home, const std::string& id) {
    const fs::path library = home / "Library";
    for (const auto& folder :
         {library / "Application Support/Loom", library / "Application Support" / id, library / "Caches/Loom",
          library / "Caches" / id, library / "Logs/Loom", library / "Logs" / id, library / "Containers" / id / "Data",
          library / "Group Containers" / id, library / "HTTPStorages" / id, library / "WebKit" / id,
          library / "Saved Application State/Loom.savedState", library / "Caches/loom-cli-nodejs",
          library / "Caches/loom-cli", library / "Caches/loom-nodejs", home / ".loom"})
        writer.noise(folder / "data.db", 9'000);
    writer.file(library / "Preferences" / (id + ".plist"), preferencesOf("linen"));
    writer.file(library / "Preferences/ByHost" / (id + ".00000000-0000-5000-8000-000000000000.plist"),
                preferencesOf("wool"));
    writer.file(library / "LaunchAgents" / (id + ".plist"), startOf(id, "/Applications/Loom.app/Contents/MacOS/loom"));
    for (const auto* file : {".loom.json", ".loom.json.backup", ".loomrc", ".loom.log"})
        writer.file(home / file, "{}\n");
}

void addMachineOfLoom(TreeWriter& writer, const Machine& machine, const std::string& id) {
    const fs::path library = machine.root / "Library";
    const std::string helper = "/Library/PrivilegedHelperTools/" + id;
    writer.file(library / "LaunchDaemons" / (id + ".plist"), startOf(id, helper));
    writer.file(library / "LaunchAgents" / (id + ".plist"), startOf(id, helper));
    writer.noise(library / "Application Support" / id / "patterns.db", 15'000);
    writer.file(library / "PrivilegedHelperTools" / id, "#!/bin/sh\necho 'This is the helper of Loom.'\n", 0755);
    addReceipt(writer, machine, id, ".\n./Loom.app\n./Loom.app/Contents\n./Loom.app/Contents/Info.plist\n");
    // Another package of the same maker, which asking for the first one must not find.
    addReceipt(writer, machine, id + ".fonts", ".\n./Loom Sans.otf\n");
}

}  // namespace

void addUninstallSamples(TreeWriter& writer, const Machine& machine) {
    const fs::path applications = machine.root / "Applications";
    const std::string loom = craftIdentifier("loom");
    write(writer, {applications / "Loom.app", loom, "3.2", {}, "loom", vendorNotice});
    writer.noise(applications / "Loom.app/Contents/Resources/Patterns.car", 90'000);
    addHomeOfLoom(writer, machine.home, loom);
    addMachineOfLoom(writer, machine, loom);

    const std::string second = craftIdentifier("loom2");
    write(writer, {applications / "Loom Two.app", second, "0.4", {}, "loomtwo", vendorNotice});
    const fs::path preferences = machine.home / "Library/Preferences";
    writer.file(preferences / (second + ".plist"), preferencesOf("silk"));
    writer.file(preferences / "ByHost" / (second + ".00000000-0000-5000-8000-000000000000.plist"),
                preferencesOf("hemp"));

    write(writer, {applications / "Spindle.app", craftIdentifier("spindle"), "1.5", {}, {}, vendorNotice});
    writer.noise(machine.home / "Library/Application Support/Spindle/threads.db", 30'000);

    write(writer, {applications / "Bobbin.app", craftIdentifier("bobbin"), "2.0", {}, {}, vendorNotice});
}

}  // namespace tarvik::Practice
