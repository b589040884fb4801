#include "StandIns/codesign/SignedApp.h"

#include "Platform/Text/PropertyList.h"
#include "Signatures/CodeDirectory.h"
#include "Signatures/Digest.h"
#include "StandIns/StandInRun.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tarvik::test {

namespace {

std::string infoOf(const std::string& program) {
    return PropertyList(PropertyList::Dictionary{{"CFBundleExecutable", program},
                                                 {"CFBundleIdentifier", "org.example." + program}})
        .xml();
}

std::string without(std::string text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

}  // namespace

void makeUnsignedBundle(const fs::path& bundle) {
    const std::string name = bundle.stem().native();
    makeFile(bundle / "Contents/Info.plist", infoOf(name));
    makeFile(bundle / "Contents/MacOS" / name, "#!/bin/sh\n");
}

void flipByte(const fs::path& file, std::size_t at) {
    std::string bytes = contentOf(file);
    bytes.at(at) = static_cast<char>(bytes.at(at) ^ 1);
    makeFile(file, bytes);
}

SignedApp::SignedApp()
    : path(folder / "Editor.app"),
      contents(path / "Contents"),
      signature(contents / "_CodeSignature"),
      seal(signature / "CodeResources"),
      framework(contents / "Frameworks/Text.framework"),
      plugIn(contents / "PlugIns/Export.bundle") {
    makeUnsignedBundle(path);
    makeFile(contents / "PkgInfo", "APPL????");
    makeFile(contents / "version.plist", "1");
    makeFile(contents / "Resources/abc.txt", "abc");
    makeFile(contents / "Resources/empty", "");
    makeFile(contents / "Resources/.hidden", "h");
    makeFile(contents / "Resources/.DS_Store", "where windows stand");
    makeFile(contents / "Resources/de.lproj/words.strings", "Wörter");
    makeFile(contents / "Resources/de.lproj/locversion.plist", "1");
    makeFile(contents / "Resources/Base.lproj/Main.nib", "nib");
    makeFile(contents / "Resources/Deep.bundle/inside.txt", "no code belongs here");
    makeLink(contents / "Resources/link", "abc.txt");
    makeFile(framework / "Versions/A/Resources/Info.plist", infoOf("Text"));
    makeFile(framework / "Versions/A/Text", "library");
    makeLink(framework / "Versions/Current", "A");
    makeLink(framework / "Text", "Versions/Current/Text");
    makeUnsignedBundle(plugIn);
    makeFile(plugIn / "Contents/Resources/in plug-in.txt", "plug-in");
    const auto done = runStandIn("codesign", {"--force", "--deep", "--sign", "-", path});
    if (done.status != 0) throw std::runtime_error(done.stderr);
}

CommandResult SignedApp::sign() const {
    return runStandIn("codesign", {"--force", "--sign", "-", "--timestamp=none", path});
}

CommandResult SignedApp::verify() const {
    return runStandIn("codesign", {"--verify", "--deep", "--strict", path});
}

std::string SignedApp::flaw() const {
    const auto result = verify();
    EXPECT_EQ(result.stdout, "");
    if (result.status == 0 && result.stderr.empty()) return "valid";
    EXPECT_EQ(result.status, 1) << result.stderr;
    return without(without(result.stderr, path.native() + ": "), path.native() + "/");
}

void SignedApp::forgeSeal(const std::string& bytes) const {
    makeFile(seal, bytes);
    auto directory = signatures::CodeDirectory::parsed(contentOf(signature / "CodeDirectory"));
    if (!directory) throw std::runtime_error("no record");
    directory->resources = signatures::Digest::of(bytes, signatures::Digest::Kind::sha256);
    makeFile(signature / "CodeDirectory", directory->bytes());
}

}  // namespace tarvik::test
