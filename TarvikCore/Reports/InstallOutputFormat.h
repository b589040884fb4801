#pragma once

#include <optional>
#include <string_view>

namespace tarvik {

/// How a report is written: for eyes, which is the front's own business, or for programs.
enum class InstallOutputFormat {
    human,  ///< for eyes: aligned, rounded, sentences
    tsv,    ///< a line for each record
    toml,   ///< a document
};

/// The enumerator's own name, and back.
std::string_view textOf(InstallOutputFormat format);
std::optional<InstallOutputFormat> installOutputFormatOf(std::string_view text);

}  // namespace tarvik
