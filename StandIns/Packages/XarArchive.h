#pragma once

#include "Packages/ByteSource.h"
#include "Packages/XarContents.h"
#include "Platform/Basics/Path.h"
#include "Platform/Files/FileDescriptor.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tarvik::packages {

/// An open archive in the format of xar, which flat packages are: a header of 28 bytes or more with numbers in network
/// order, the table of contents as XML that zlib has packed, and the heap. Belongs to one thread.
class XarArchive {
public:
    /// Reads the header and the table, whose digest must be right where it has one, and no more of the file. A table of
    /// more than 256 MB is not believed.
    /// @throws PackageFailure when the file is no archive, or damaged; FileError when it cannot be read.
    static XarArchive open(const fs::path& file);

    const XarContents& contents() const { return m_contents; }
    /// The bytes of the table's digest as they lie in the heap: what signatures are made of. Empty where there is none.
    const std::string& checksum() const { return m_checksum; }

    /// The bytes of an entry, without its encoding. At their end their number and both checksums have been proved.
    /// The archive must outlive it.
    ByteSource source(const XarEntry& entry) const;
    /// All of them. @throws PackageFailure when there are more than `limit`.
    std::string bytes(const XarEntry& entry, std::uint64_t limit) const;
    /// What lies in the heap. @throws PackageFailure when it is not there, or longer than `limit`.
    std::string bytes(const XarPlace& place, std::uint64_t limit) const;

private:
    explicit XarArchive(FileDescriptor file) : m_file(std::move(file)) {}
    void readTable();
    std::string rawBytes(std::uint64_t offset, std::uint64_t length) const;
    ByteSource packedSource(const XarEntry& entry) const;

    FileDescriptor m_file;
    std::uint64_t m_fileSize = 0;
    std::uint64_t m_heap = 0;
    XarContents m_contents;
    std::string m_checksum;
};

}  // namespace tarvik::packages
