#include "Packages/XarContents.h"

#include "Packages/Base64.h"
#include "Packages/PackageFailure.h"
#include "Packages/Xml.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <map>

namespace tarvik::packages {

namespace {

constexpr std::size_t mostEntries = 1'000'000;
constexpr std::size_t mostSignatures = 8;
constexpr std::size_t mostCertificates = 32;

std::string_view trimmedNumber(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

template <typename Number>
Number numberOf(std::string_view text, int base = 10) {
    text = trimmedNumber(text);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size())
        failDamaged("The table of contents holds a number that is none.");
    return number;
}

XarEntry::Type typeOf(std::string_view text) {
    if (text == "file") return XarEntry::Type::file;
    if (text == "directory") return XarEntry::Type::folder;
    if (text == "symlink") return XarEntry::Type::link;
    if (text == "hardlink") return XarEntry::Type::hardLink;
    return XarEntry::Type::other;
}

/// Follows the elements of a table and puts what they hold where it belongs.
class TableReader {
public:
    XarContents contents;

    void begin(const std::string& name, const Xml::Attributes& attributes) {
        m_path.push_back(name);
        m_text.clear();
        m_attributes = attributes;
        if (!isInTable()) return;
        if (name == "file" && isInFilesOnly()) {
            beginEntry();
        } else if (m_path.size() == 3 && (name == "signature" || name == "x-signature")) {
            if (contents.signatures.size() == mostSignatures) failTooLarge("The archive has too many signatures.");
            contents.signatures.push_back({attribute("style"), {}, {}});
        } else if (m_path.size() == 3 && name == "checksum") {
            contents.checksumStyle = attribute("style");
        }
    }

    void hold(std::string_view text) { m_text += text; }

    void end() {
        const std::string name = m_path.back();
        if (m_path.size() > 3 && isInTable()) {
            if (m_path[2] == "checksum") readPlace(contents.checksum, name);
            if (m_path[2] == "signature" || m_path[2] == "x-signature") readSignature(name);
            if (m_path[2] == "file") readEntry(name);
        }
        if (name == "file" && !m_open.empty() && m_open.back().depth == m_path.size()) m_open.pop_back();
        m_path.pop_back();
        m_text.clear();
    }

private:
    struct Open {
        std::size_t index;
        /// Of elements.
        std::size_t depth;
    };

    std::string attribute(const std::string& key) const {
        const auto found = m_attributes.find(key);
        return found == m_attributes.end() ? std::string() : found->second;
    }

    bool isInTable() const { return m_path.size() >= 3 && m_path[0] == "xar" && m_path[1] == "toc"; }

    bool isInFilesOnly() const {
        return std::all_of(m_path.begin() + 2, m_path.end(), [](const std::string& each) { return each == "file"; });
    }

    void beginEntry() {
        if (contents.entries.size() == mostEntries) failTooLarge("The archive has more than a million entries.");
        XarEntry entry;
        entry.id = attribute("id");
        entry.type = XarEntry::Type::other;
        contents.entries.push_back(entry);
        m_open.push_back({contents.entries.size() - 1, m_path.size()});
    }

    void readPlace(XarPlace& place, const std::string& name) {
        if (name == "offset") place.offset = numberOf<std::uint64_t>(m_text);
        if (name == "size" || name == "length") place.length = numberOf<std::uint64_t>(m_text);
    }

    void readSignature(const std::string& name) {
        XarSignature& signature = contents.signatures.back();
        if (m_path.size() == 4) readPlace(signature.place, name);
        if (name != "X509Certificate") return;
        const auto bytes = bytesOfBase64(m_text);
        if (!bytes || signature.certificates.size() == mostCertificates)
            failDamaged("The archive holds a certificate that cannot be read.");
        signature.certificates.push_back(*bytes);
    }

    void readEntry(const std::string& name) {
        if (m_open.empty()) return;
        XarEntry& entry = contents.entries[m_open.back().index];
        const std::size_t below = m_path.size() - m_open.back().depth;
        if (below == 1) readOwn(entry, name);
        if (below == 2 && m_path[m_path.size() - 2] == "data") readData(entry, name);
    }

    void readOwn(XarEntry& entry, const std::string& name) {
        if (name == "name") {
            readName(entry);
        } else if (name == "type") {
            entry.type = typeOf(m_text);
            if (entry.type == XarEntry::Type::hardLink) readHardLink(entry);
        } else if (name == "mode") {
            entry.mode = numberOf<std::uint32_t>(m_text, 8) & 07777;
        } else if (name == "uid") {
            entry.user = numberOf<std::uint32_t>(m_text);
        } else if (name == "gid") {
            entry.group = numberOf<std::uint32_t>(m_text);
        } else if (name == "link") {
            entry.target = m_text;
        }
    }

    void readName(XarEntry& entry) {
        if (!entry.path.empty()) failDamaged("An entry of the archive has two names.");
        std::string name = m_text;
        if (attribute("enctype") == "base64") name = bytesOfBase64(m_text).value_or(std::string());
        if (name.empty()) failDamaged("An entry of the archive has no name.");
        if (m_open.size() > 1) {
            const std::string& folder = contents.entries[m_open[m_open.size() - 2].index].path;
            if (folder.empty()) failDamaged("A folder of the archive tells its contents before its name.");
            // What an entry's own name adds is one step, which a slash in it cannot hide.
            name = folder + '/' + name;
        }
        // No path of a Mac is longer: deep tables would make the list of all paths huge.
        constexpr std::size_t longestPath = 4096;
        if (name.size() > longestPath) failDamaged("The archive holds a path that is too long.");
        entry.path = std::move(name);
    }

    /// The first of several names is the file itself, and its link says "original".
    void readHardLink(XarEntry& entry) {
        const std::string link = attribute("link");
        if (link == "original")
            entry.type = XarEntry::Type::file;
        else
            entry.target = link;
    }

    void readData(XarEntry& entry, const std::string& name) {
        if (!entry.data) entry.data.emplace();
        if (name == "offset") entry.data->offset = numberOf<std::uint64_t>(m_text);
        if (name == "length") entry.data->length = numberOf<std::uint64_t>(m_text);
        if (name == "size") entry.size = numberOf<std::uint64_t>(m_text);
        if (name == "encoding") entry.encoding = attribute("style");
        if (name == "archived-checksum") entry.archived = {attribute("style"), m_text};
        if (name == "extracted-checksum") entry.extracted = {attribute("style"), m_text};
    }

    std::vector<std::string> m_path;
    std::vector<Open> m_open;
    std::string m_text;
    /// Of the element that began last: all that is read has no elements in it.
    Xml::Attributes m_attributes;
};

}  // namespace

const XarEntry* XarContents::find(std::string_view path) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const XarEntry& each) { return each.path == path; });
    return found == entries.end() ? nullptr : &*found;
}

XarContents XarContents::parsed(std::string_view xml) {
    TableReader table;
    Xml::read(xml, {.begins = [&](const std::string& name,
                                  const Xml::Attributes& attributes) { table.begin(name, attributes); },
                    .holds = [&](std::string_view text) { table.hold(text); },
                    .ends = [&] { table.end(); }});
    for (const XarEntry& entry : table.contents.entries)
        if (entry.path.empty()) failDamaged("An entry of the archive has no name.");
    return std::move(table.contents);
}

}  // namespace tarvik::packages
