#pragma once

#include "Platform/Basics/Path.h"
#include "Practice/Packages/PackageWriter.h"
#include "Support/RealVolume.h"

#include <string>

/// Packages for tests, and the machine in a folder that they are installed on.
namespace tarvik::test {

/// A package of one application, "Applications/Editor.app", of few files.
Practice::PackageWriter::Component editorComponent();
/// Writes a package, unsigned. @returns its path.
fs::path makePackage(const fs::path& path, const Practice::XarWriter& archive);

/// Whether scripts of a machine in a folder can run here.
bool canRunScripts();

}  // namespace tarvik::test

/// First line of a test whose packages have scripts.
#define TARVIK_NEEDS_SCRIPTS() \
    if (!::tarvik::test::canRunScripts()) TARVIK_SKIP_BECAUSE("This system cannot keep a script in a folder.")
