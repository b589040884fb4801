#pragma once

namespace tarvik::CommandLine {

/// How results are written to standard output.
enum class Format {
    human,  ///< for eyes: aligned, rounded, sentences
    tsv,    ///< a header line, then a line for each record
    toml,   ///< a document
};

}  // namespace tarvik::CommandLine
