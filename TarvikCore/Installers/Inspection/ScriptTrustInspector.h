#pragma once

#include "Installers/Inspection/TrustSummary.h"
#include "Platform/Basics/Path.h"

/// Tells what a shell script names. Whatever that is, no script is ever trusted.
namespace tarvik::ScriptTrustInspector {

/// The details are the first line that is not empty, "Lines: 12", and the first of the first 40 lines that names one of
/// the system's folders, "References: cp -R Tool.app /Applications". A file that cannot be read, is no UTF-8, or has
/// more than 16 MB, which no person has written, counts as empty. Never fails. Blocks while it is read; any thread.
TrustSummary inspect(const fs::path& script);

}  // namespace tarvik::ScriptTrustInspector
