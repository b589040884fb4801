#pragma once

#include "Installers/Options/InstallerOption.h"

#include <optional>
#include <string_view>

/// The text form of an option: TOML, with each field at the top under its own name. Only `allowUntrustedScripts` may be
/// missing, and is false then; other keys may stand there too and mean nothing.
namespace tarvik::InstallerOptionFile {

/// Nothing for what is no TOML 1.0, for a key that is missing, a value of another type, a kind of source that is not
/// known, and for a document with more than 500 full stops outside of comments. Pure.
std::optional<InstallerOption> parsed(std::string_view text);

}  // namespace tarvik::InstallerOptionFile
