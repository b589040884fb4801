#pragma once

#include "Practice/Packages/Packed.h"
#include "Practice/Packages/SigningIdentity.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::Practice {

/// Writes an archive in the format of xar. It writes whatever it is told, names that no reader should believe too.
class XarWriter {
public:
    /// A path makes the folders above it. The name of a step is taken as it is, so that ".." can be one.
    void addFile(const std::string& path, const std::string& bytes, Compression compression = Compression::zlib);
    void addFolder(const std::string& path);
    void addLink(const std::string& path, const std::string& target);
    /// Another name of a file that was added before.
    void addHardLink(const std::string& path, const std::string& file);
    /// Elements for an entry directly in the archive that nothing above makes: "<type>character special</type>".
    void addOther(const std::string& name, const std::string& elements);

    enum class Signature { rsa, rsaAndCms };
    /// The archive, its table vouched for by SHA-1, and by the identity where there is one.
    std::string bytes(const SigningIdentity* identity = nullptr, Signature signature = Signature::rsa) const;
    /// An archive around any table of contents, whose digest is the first 20 bytes of the heap.
    static std::string around(std::string_view table, std::string_view heap);

private:
    struct Entry {
        std::string path;
        std::string type;
        std::string elements;
        /// What the heap holds of it.
        std::string stored;
        std::string size;
        std::string checksums;
        std::string encoding;
        bool hasData = false;
    };
    void add(Entry entry);
    std::string elementsBelow(const std::string& folder, std::size_t& offset) const;
    std::string elementOf(std::size_t index, std::size_t& offset) const;

    std::vector<Entry> m_entries;
};

}  // namespace tarvik::Practice
