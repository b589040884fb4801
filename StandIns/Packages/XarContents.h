#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvik::packages {

/// Where something lies in the heap, the bytes behind the table of contents.
struct XarPlace {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

/// A digest by the name of its algorithm, such as "sha1".
struct XarChecksum {
    std::string style;
    /// In hexadecimal digits.
    std::string digits;
};

struct XarEntry {
    enum class Type { file, folder, link, hardLink, other };

    /// As the names of the table say it, joined with "/"; anybody may have written it.
    std::string path;
    Type type = Type::file;
    std::uint32_t mode = 0644;
    std::uint32_t user = 0;
    std::uint32_t group = 0;
    /// What a symbolic link leads to; of a hard link the id of the entry that it is one with.
    std::string target;
    std::string id;
    /// Absent for a file without bytes.
    std::optional<XarPlace> data;
    /// Of the bytes as they are without the encoding.
    std::uint64_t size = 0;
    /// A MIME type.
    std::string encoding;
    XarChecksum archived;
    XarChecksum extracted;
};

struct XarSignature {
    /// "RSA" or "CMS".
    std::string style;
    XarPlace place;
    /// As DER, the signer's first.
    std::vector<std::string> certificates;
};

/// What the table of contents of a xar archive says.
struct XarContents {
    /// Of the table itself: the algorithm, and where the digest lies.
    std::string checksumStyle;
    XarPlace checksum;
    std::vector<XarSignature> signatures;
    /// Each folder before what is in it, in the order of the table.
    std::vector<XarEntry> entries;

    const XarEntry* find(std::string_view path) const;
    /// Reads the table. A million entries at most. Pure. @throws PackageFailure.
    static XarContents parsed(std::string_view xml);
};

}  // namespace tarvik::packages
