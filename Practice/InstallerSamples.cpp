#include "Practice/InstallerSamples.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"
#include "Practice/Archives/ZipWriter.h"
#include "Practice/Bundle.h"
#include "Practice/DiskImages/DiskImage.h"
#include "Practice/Packages/PackageWriter.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvik::Practice {

namespace {

constexpr std::int64_t resourceSize = 20'000;

std::string sampleIdentifier(std::string_view word) {
    return fmt::format("net.practicecraft.{}", word);
}

/// A folder whose contents go into images and archives, gone at the end of its life.
class Workshop {
public:
    explicit Workshop(const fs::path& folder) : m_machine{.root = folder, .home = folder, .drives = {}} {
        Files::createFolder(folder);
    }
    ~Workshop() {
        ignoringFailure([&] { Files::removeItem(m_machine.root); });
    }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    /// A tree of its own with one application in it.
    fs::path treeWith(const std::string& name, const std::string& word) {
        fs::path tree = m_machine.root / word;
        TreeWriter writer(Dice(word.size()), m_machine);
        const fs::path bundle = tree / (name + ".app");
        write(writer, {.path = bundle, .identifier = sampleIdentifier(word), .version = "2.0", .executable = word});
        writer.noise(bundle / "Contents/Resources/Assets.car", resourceSize);
        writer.link(bundle / "Contents/Resources/Current.car", "Assets.car");
        writer.finish();
        return tree;
    }

    /// The bytes of an image with these volumes.
    std::string imageOf(const std::vector<DiskImage::Volume>& volumes) const {
        const fs::path image = m_machine.root / "image.dmg";
        DiskImage::create(image, volumes);
        std::string bytes = Files::read(image);
        Files::removeItem(image);
        return bytes;
    }

private:
    Machine m_machine;
};

void addToArchive(ZipWriter& archive, const fs::path& folder, const std::string& prefix) {
    for (const std::string& name : Files::names(folder)) {
        const fs::path path = folder / name;
        const auto info = Files::info(path);
        if (!info) continue;
        if (info->type == Files::ItemType::folder) {
            archive.addFolder(prefix + name + "/");
            addToArchive(archive, path, prefix + name + "/");
        } else if (info->type == Files::ItemType::symbolicLink) {
            archive.addLink(prefix + name, Files::linkText(path).value_or(fs::path()));
        } else {
            const auto mode = static_cast<unsigned>(fs::status(path).permissions());
            archive.add({.name = prefix + name, .content = Files::read(path), .mode = 0100000U | mode});
        }
    }
}

/// An application as a package installs it.
PackageWriter::Component componentOf(const std::string& name, const std::string& word) {
    PackageWriter::Component component{.identifier = sampleIdentifier(word), .version = "1.4"};
    const std::string bundle = "./Applications/" + name + ".app";
    for (const std::string& folder :
         {std::string("./Applications"), bundle, bundle + "/Contents", bundle + "/Contents/MacOS"})
        component.payload.addFolder(folder);
    component.payload.addFile(bundle + "/Contents/Info.plist",
                              PropertyList(PropertyList::Dictionary{{"CFBundleIdentifier", component.identifier},
                                                                    {"CFBundleName", name},
                                                                    {"CFBundleExecutable", word},
                                                                    {"CFBundlePackageType", "APPL"},
                                                                    {"CFBundleShortVersionString", "1.4"}})
                                  .xml());
    component.payload.addFile(bundle + "/Contents/MacOS/" + word, "#!/bin/sh\necho " + name + "\n", 0755);
    return component;
}

void addPackages(TreeWriter& writer, const Machine& machine, const fs::path& folder) {
    const auto identity = SigningIdentity::made();
    writer.file(machine.root / "Library/Keychains/TrustedCertificates/Practice.pem", identity.authorityAsPem());
    writer.file(folder / "Awl signed.pkg", PackageWriter::component(componentOf("Awl", "awl")).bytes(&identity));

    auto withScripts = componentOf("Burr", "burr");
    withScripts.payload.addFolder("./Library");
    withScripts.payload.addFolder("./Library/LaunchDaemons");
    withScripts.payload.addFile("./Library/LaunchDaemons/net.practicecraft.burr.plist", "<plist/>\n");
    withScripts.scripts["postinstall"] = "#!/bin/sh\ntouch \"$2/Library/Burr was installed\"\n";
    writer.file(folder / "Burr unsigned.pkg", PackageWriter::component(withScripts).bytes());

    writer.file(folder / "Chisel Suite.pkg", PackageWriter::product("Chisel Suite", {componentOf("Chisel", "chisel"),
                                                                                     componentOf("Mallet", "mallet")})
                                                 .bytes());
}

/// As packages were before they were single files.
void addMetaPackage(TreeWriter& writer, const fs::path& meta) {
    const auto info = [](PropertyList::Dictionary entries) { return PropertyList(std::move(entries)).xml(); };
    PropertyList::List parts;
    for (const std::string name : {"Drill", "Easel"}) {
        const std::string word = name == "Drill" ? "drill" : "easel";
        const fs::path part = meta / "Contents/Packages" / (name + ".pkg");
        writer.file(part / "Contents/Info.plist", info({{"CFBundleIdentifier", sampleIdentifier(word)},
                                                        {"CFBundleShortVersionString", "1.4"},
                                                        {"IFPkgFlagDefaultLocation", "/"}}));
        writer.file(part / "Contents/Archive.pax.gz",
                    packed(componentOf(name, word).payload.bytes(), Compression::gzip));
        parts.emplace_back(PropertyList::Dictionary{{"IFPkgFlagPackageLocation", name + ".pkg"},
                                                    {"IFPkgFlagPackageSelection", "selected"}});
    }
    writer.file(meta / "Contents/Info.plist", info({{"IFPkgFlagPackageList", std::move(parts)}}));
}

}  // namespace

void addInstallerSamples(TreeWriter& writer, const Machine& machine) {
    const fs::path folder = machine.root / "Installers";
    writer.folder(folder);
    {
        Workshop workshop(machine.root / ".workshop");
        writer.file(folder / "Fret.dmg", workshop.imageOf({{"Fret", workshop.treeWith("Fret", "fret")}}));
        writer.file(folder / "Two volumes.dmg", workshop.imageOf({{"Gouge", workshop.treeWith("Gouge", "gouge")},
                                                                  {"Hasp", workshop.treeWith("Hasp", "hasp")}}));
        ZipWriter archive;
        addToArchive(archive, workshop.treeWith("Inlay", "inlay"), "");
        writer.file(folder / "Inlay.zip", archive.bytes());
    }
    addPackages(writer, machine, folder);
    addMetaPackage(writer, folder / "Drill and Easel.mpkg");
    writer.file(folder / "say hello.sh", "#!/bin/bash\n# Changes nothing.\necho \"Hello from $0\"\n", 0755);
    writer.file(folder / "make a note.command",
                "#!/bin/bash\n# Leaves a note where applications are.\nset -e\n"
                "echo \"A script was here.\" > \"/Applications/A note.txt\"\n",
                0644);
}

}  // namespace tarvik::Practice
