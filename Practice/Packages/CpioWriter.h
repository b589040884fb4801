#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tarvik::Practice {

/// Writes an archive of cpio in its portable form ("070707"), as payloads and scripts of packages are. It writes
/// whatever it is told, names that no reader should believe too.
class CpioWriter {
public:
    struct Item {
        /// "./Applications/Editor.app".
        std::string path;
        /// With the type, as <sys/stat.h> has it.
        mode_t mode = 0100644;
        /// Of a link, where it leads.
        std::string bytes;
        unsigned user = 0;
        unsigned group = 0;
        /// Names of one file have one number above 0, and all its bytes.
        unsigned inode = 0;
        unsigned names = 1;
        /// In seconds since 1970.
        std::int64_t modified = 1'700'000'000;
    };

    void add(const Item& item);
    void addFolder(const std::string& path, mode_t permissions = 0755) {
        add({.path = path, .mode = 0040000 | permissions});
    }
    void addFile(const std::string& path, const std::string& bytes, mode_t permissions = 0644) {
        add({.path = path, .mode = 0100000 | permissions, .bytes = bytes});
    }
    void addLink(const std::string& path, const std::string& target) {
        add({.path = path, .mode = 0120755, .bytes = target});
    }

    /// The archive with its end.
    std::string bytes() const;

private:
    std::string m_bytes;
    unsigned m_count = 1000;
};

}  // namespace tarvik::Practice
