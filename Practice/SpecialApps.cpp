#include "Practice/SpecialApps.h"

#include "Platform/Text/PropertyList.h"
#include "Practice/Bundle.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>

namespace tarvik::Practice {

namespace {

using Form = Bundle::Form;

/// The folders of one machine, by short names.
struct Places {
    explicit Places(const Machine& machine)
        : applications(machine.root / "Applications"),
          library(machine.root / "Library"),
          system(machine.root / "System/Applications"),
          home(machine.home),
          firstDrive(machine.drives.front() / "ExternalTarvik"),
          secondDrive(machine.drives.back() / "ExternalTarvik"),
          missingDrive(machine.root / "Volumes/Unplugged/ExternalTarvik") {}

    fs::path applications, library, system, home, firstDrive, secondDrive, missingDrive;
};

std::string identifierOf(std::string_view word) {
    return fmt::format("org.example.{}", word);
}

/// One for each thing that makes a move risky, and one with all of them.
void addRisks(TreeWriter& writer, const Places& at) {
    const auto helper = [&](const fs::path& app, std::string_view folder, std::string_view name) {
        writer.file(app / "Contents/Library" / folder / name / "Contents/PkgInfo", "????");
    };
    const fs::path store = at.applications / "Paper Store.app";
    write(writer, {store, identifierOf("paperstore"), "2.4"});
    writer.file(store / "Contents/_MASReceipt/receipt", "receipt");

    const fs::path menu = at.applications / "Menu Meters.app";
    write(writer, {menu, identifierOf("menumeters")});
    helper(menu, "LoginItems", "Meter Helper.app");

    const fs::path tunnel = at.applications / "Tunnel.app";
    write(writer, {tunnel, identifierOf("tunnel"), "7.1"});
    helper(tunnel, "SystemExtensions", "tunnel.systemextension");

    const fs::path all = at.applications / "Everything.app";
    write(writer, {all, identifierOf("everything"), "9"});
    writer.file(all / "Contents/_MASReceipt/receipt", "receipt");
    helper(all, "LoginItems", "Helper.app");
    helper(all, "Extensions", "old.kext");
}

/// Bundles that describe themselves in every way, and in none.
void addForms(TreeWriter& writer, const Places& at) {
    write(writer, {at.applications / "Binary.app", identifierOf("binary"), "1.2", {}, {}, {}, Form::binary});
    write(writer, {at.applications / "Broken List.app", identifierOf("broken"), "1", {}, {}, {}, Form::broken});
    write(writer, {at.applications / "No List.app", {}, {}, {}, {}, {}, Form::none});
    write(writer, {at.applications / "写真館.app", identifierOf("shashinkan")});
    write(writer, {at.applications / "Редактор.app", identifierOf("redaktor"), "3", {}, {}, {}, Form::binary});
    write(writer, {at.applications / "E\u0301diteur.app", identifierOf("editeur")});
    write(writer, {at.applications / "DAW.app", identifierOf("daw"), "12", "Digital Audio Workstation"});
}

/// Every place where applications are looked for, and a place that is too deep.
void addPlaces(TreeWriter& writer, const Places& at) {
    const std::string vendor = "Copyright © 2026 Practice Sounds";
    write(writer, {at.applications / "Studio Suite/Mixer.app", "org.practicesounds.mixer", "4.0", {}, {}, vendor});
    write(writer,
          {at.applications / "Studio Suite/Tools/Tuner.app", "org.practicesounds.tuner", "4.0", {}, {}, vendor});
    write(writer, {at.applications / "Studio Suite/Tools/Deep/Out of Reach.app", identifierOf("outofreach")});
    write(writer, {at.applications / "Utilities/Disk Doctor.app", identifierOf("diskdoctor")});
    write(writer, {at.system / "Clock.app", identifierOf("clock")});
    write(writer, {at.home / "Applications/Home Brew.app", identifierOf("homebrew")});
    write(writer, {at.home / "Library/Application Support/Toolmaker/tools/bin/Toolbox Agent.app",
                   identifierOf("toolbox"),
                   "1",
                   {},
                   "ToolboxAgent"});
}

void addLauncher(TreeWriter& writer, const fs::path& launcher, const fs::path& target) {
    write(writer,
          {launcher, identifierOf(launcher.stem().native()) + ".externallauncher", "1.0", {}, "ExternalAppLauncher"});
    writer.file(launcher / "Contents/Resources/ExternalAppTarget.txt", target.native() + "\n");
}

/// What stands on drives already, by links and launchers that work and that do not.
void addMoved(TreeWriter& writer, const Places& at, Records& records) {
    const fs::path linked = at.firstDrive / "Apps/Faraway.app";
    write(writer, {linked, identifierOf("faraway"), "5.5"});
    writer.link(at.applications / "Faraway.app", linked);
    writer.link(at.applications / "Unplugged.app", at.missingDrive / "Apps/Unplugged.app");

    const fs::path launched = at.secondDrive / "Apps/Launched.app";
    write(writer, {launched, identifierOf("launched"), "6.0"});
    addLauncher(writer, at.applications / "Launched.app", launched);
    addLauncher(writer, at.applications / "Ghost.app", at.missingDrive / "Apps/Ghost.app");

    write(writer, {at.firstDrive / "Folders/Linked Suite/Inside.app", identifierOf("inside")});
    writer.link(at.applications / "Linked Suite", at.firstDrive / "Folders/Linked Suite");

    const fs::path data = at.firstDrive / "Data/Library/Application Support/Faraway";
    writer.noise(data / "library.db", 40'000);
    writer.link(at.home / "Library/Application Support/Faraway", data);
    records.addMove(at.applications / "Faraway.app", linked, identifierOf("faraway"), 40'000);
}

/// One application with data at every place where data is looked for, by identifier, name and program.
void addData(TreeWriter& writer, const Places& at) {
    write(writer, {at.applications / "Full House.app", identifierOf("fullhouse"), "2.0", {}, "fullhouse"});
    const std::string id = identifierOf("fullhouse");
    const std::string name = "Full House";
    for (const auto& folder :
         {at.home / "Library/HTTPStorages" / id, at.home / "Library/Caches" / id, at.home / "Library/WebKit" / id,
          at.home / "Library/Application Support" / name, at.home / "Library/Caches" / name,
          at.home / "Library/Logs" / name, at.home / "Library/Saved Application State" / (name + ".savedState"),
          at.home / "Library/Caches/fullhouse-cli-nodejs", at.home / "Library/Caches/fullhouse-cli",
          at.home / "Library/Caches/fullhouse-nodejs", at.home / ".fullhouse", at.library / "Application Support" / id,
          at.library / "Caches" / id, at.library / "Logs" / id, at.library / "Application Support" / name,
          at.library / "Caches" / name, at.library / "Logs" / name})
        writer.noise(folder / "data.db", 12'000);
    const std::string preferences = PropertyList(PropertyList::Dictionary{{"Theme", "light"}}).binary();
    for (const auto& file :
         {at.home / "Library/Preferences" / (id + ".plist"), at.library / "Preferences" / (id + ".plist")})
        writer.file(file, preferences);
    for (const auto* file : {".fullhouse.json", ".fullhouse.json.backup", ".fullhouserc", ".fullhouse.log"})
        writer.file(at.home / file, "{}\n");
    // Sandboxed data stays where it is, whatever it is called.
    writer.file(at.home / "Library/Containers" / id / "Data/kept.db", "stays");
    writer.file(at.home / "Library/Group Containers" / ("group." + id) / "kept.db", "stays");
}

/// Well-known applications: two whose dotfiles belong to something else, and some with folders of other names.
void addWellKnown(TreeWriter& writer, const Places& at) {
    write(writer, {at.applications / "Claude.app", "com.anthropic.claudefordesktop", "1.9", {}, "Claude"});
    write(writer, {at.home / "Applications/Claude Code URL Handler.app",
                   "com.anthropic.claude-code-url-handler",
                   "1.0",
                   {},
                   "claude"});
    writer.file(at.home / ".claude.json", "{}\n");

    struct Owner {
        std::string_view name, identifier, folder;
    };
    constexpr std::array<Owner, 6> owners = {{
        {"Logic Pro", "com.apple.logic10", "Logic"},
        {"Final Cut Pro", "com.apple.FinalCut", "ProApps"},
        {"Adobe Photoshop 2026", "com.adobe.Photoshop", "Adobe"},
        {"Guitar Pro 8", "com.arobas-music.guitarpro8", "Arobas Music"},
        {"FL Studio 2025", "com.image-line.flstudio", "Image-Line"},
        {"SpectraLayers 12", "com.steinberg.spectralayers12", "Steinberg"},
    }};
    const fs::path support = at.library / "Application Support";
    for (const Owner& owner : owners) {
        write(writer, {at.applications / fmt::format("{}.app", owner.name), std::string(owner.identifier), "11.0"});
        writer.noise(support / owner.folder / "Library.bundle", 20'000);
    }
    writer.noise(support / "GarageBand/Loops.bundle", 20'000);
}

/// One application here and an older copy of it on a drive.
void addCopies(TreeWriter& writer, const Places& at) {
    write(writer, {at.applications / "Twice.app", identifierOf("twice"), "2.0"});
    write(writer, {at.firstDrive / "Apps/Twice.app", identifierOf("twice"), "1.9"});
}

void addTracking(TreeWriter& writer, const Places& at, Records& records) {
    const fs::path tracked = at.home / "Documents/Full House Projects";
    writer.noise(tracked / "project.house", 8'000);
    // Without an identifier it is known by its name alone.
    const fs::path drawings = at.home / "Documents/Nameless Drawings";
    write(writer, {at.applications / "Nameless.app", {}, "0.9"});
    writer.noise(drawings / "first.drawing", 8'000);
    records.addInstall("Full House", identifierOf("fullhouse"), "pkg",
                       {tracked, at.applications / "Full House.app/Contents/Info.plist", at.home / "Documents/gone"});
    records.addInstall("Nameless", {}, "dmg", {drawings});
}

}  // namespace

void addSpecialApps(TreeWriter& writer, const Machine& machine, Records& records) {
    const Places at(machine);
    addRisks(writer, at);
    addForms(writer, at);
    addPlaces(writer, at);
    addMoved(writer, at, records);
    addData(writer, at);
    addWellKnown(writer, at);
    addCopies(writer, at);
    addTracking(writer, at, records);
}

}  // namespace tarvik::Practice
