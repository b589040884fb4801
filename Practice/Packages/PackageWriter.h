#pragma once

#include "Practice/Packages/CpioWriter.h"
#include "Practice/Packages/Packed.h"
#include "Practice/Packages/SigningIdentity.h"
#include "Practice/Packages/XarWriter.h"

#include <map>
#include <string>
#include <vector>

/// Makes packages as they are handed out for a Mac: one file each, the same bytes on every run.
namespace tarvik::Practice::PackageWriter {

/// What one package installs.
struct Component {
    std::string identifier = "com.acme.editor";
    std::string version = "1.0";
    std::string place = "/";
    CpioWriter payload;
    Compression compression = Compression::gzip;
    /// By name, "preinstall" and "postinstall" among them; they may be executed.
    std::map<std::string, std::string> scripts;
};

/// The file that tells of a package.
std::string packageInfo(const Component& component);
/// A package for itself, ready to be written.
XarWriter component(const Component& component);
/// A product of several, each a folder of its identifier with ".pkg" in the archive. Its title is shown to the user.
XarWriter product(const std::string& title, const std::vector<Component>& components);

}  // namespace tarvik::Practice::PackageWriter
