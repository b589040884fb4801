#include "Practice/Packages/XarWriter.h"

#include "Platform/Basics/Failure.h"

#include <algorithm>
#include <cstdint>
#include <openssl/evp.h>
#include <openssl/sha.h>

namespace tarvik::Practice {

namespace {

constexpr std::size_t digestSize = 20;

std::string sha1(std::string_view bytes) {
    std::string digest(digestSize, '\0');
    unsigned length = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(digest.data()), &length, EVP_sha1(),
                   nullptr) != 1)
        throw Failure("Practice", 1, "A checksum could not be made.");
    return digest;
}

std::string inHexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char each : bytes) {
        text += digits[static_cast<unsigned char>(each) >> 4];
        text += digits[static_cast<unsigned char>(each) & 15];
    }
    return text;
}

std::string inBase64(std::string_view bytes) {
    std::basic_string<unsigned char> text(bytes.size() / 3 * 4 + 5, 0);
    const int length = EVP_EncodeBlock(text.data(), reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    return {text.begin(), text.begin() + length};
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char each : text) {
        if (each == '&')
            result += "&amp;";
        else if (each == '<')
            result += "&lt;";
        else
            result += each;
    }
    return result;
}

std::string element(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

std::string inNetworkOrder(std::uint64_t number, int size) {
    std::string bytes;
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string placeElements(std::size_t offset, std::size_t size) {
    return element("offset", std::to_string(offset)) + element("size", std::to_string(size));
}

std::string keyInfo(const SigningIdentity& identity) {
    std::string certificates;
    for (const std::string& each : identity.certificates()) certificates += element("X509Certificate", inBase64(each));
    return "<KeyInfo xmlns=\"http://www.w3.org/2000/09/xmldsig#\">" + element("X509Data", certificates) + "</KeyInfo>";
}

}  // namespace

void XarWriter::add(Entry entry) {
    const std::string parent = parentOf(entry.path);
    const bool isThere = parent.empty() || std::any_of(m_entries.begin(), m_entries.end(),
                                                       [&](const Entry& each) { return each.path == parent; });
    if (!isThere) addFolder(parent);
    m_entries.push_back(std::move(entry));
}

void XarWriter::addFolder(const std::string& path) {
    add({.path = path, .type = element("type", "directory"), .elements = element("mode", "0755")});
}

void XarWriter::addLink(const std::string& path, const std::string& target) {
    add({.path = path,
         .type = element("type", "symlink"),
         .elements = element("mode", "0755") + "<link type=\"file\">" + escaped(target) + "</link>"});
}

void XarWriter::addOther(const std::string& name, const std::string& elements) {
    add({.path = name, .type = elements});
}

void XarWriter::addHardLink(const std::string& path, const std::string& file) {
    const auto original =
        std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& each) { return each.path == file; });
    // Of a file that is not there, a number that nothing has.
    constexpr std::ptrdiff_t unknown = 999'998;
    std::ptrdiff_t id = unknown;
    if (original != m_entries.end()) {
        original->type = "<type link=\"original\">hardlink</type>";
        id = original - m_entries.begin();
    }
    add({.path = path, .type = "<type link=\"" + std::to_string(id + 1) + "\">hardlink</type>"});
}

void XarWriter::addFile(const std::string& path, const std::string& bytes, Compression compression) {
    Entry entry{.path = path, .type = element("type", "file"), .elements = element("mode", "0644")};
    entry.hasData = !bytes.empty();
    entry.stored = packed(bytes, compression);
    entry.size = std::to_string(bytes.size());
    entry.checksums = "<archived-checksum style=\"sha1\">" + inHexadecimal(sha1(entry.stored)) +
                      "</archived-checksum><extracted-checksum style=\"sha1\">" + inHexadecimal(sha1(bytes)) +
                      "</extracted-checksum>";
    entry.encoding = compression == Compression::zlib    ? "application/x-gzip"
                     : compression == Compression::bzip2 ? "application/x-bzip2"
                     : compression == Compression::xz    ? "application/x-xz"
                                                         : "application/octet-stream";
    add(std::move(entry));
}

std::string XarWriter::elementOf(std::size_t index, std::size_t& offset) const {
    const Entry& entry = m_entries[index];
    const std::string name = entry.path.substr(
        parentOf(entry.path).empty() && entry.path.find('/') == std::string::npos ? 0 : entry.path.rfind('/') + 1);
    std::string content = element("name", escaped(name)) + entry.type + entry.elements;
    if (entry.hasData) {
        content += element("data", entry.checksums + "<encoding style=\"" + entry.encoding + "\"/>" +
                                       element("size", entry.size) + element("offset", std::to_string(offset)) +
                                       element("length", std::to_string(entry.stored.size())));
        offset += entry.stored.size();
    }
    content += elementsBelow(entry.path, offset);
    return "<file id=\"" + std::to_string(index + 1) + "\">" + content + "</file>";
}

std::string XarWriter::elementsBelow(const std::string& folder, std::size_t& offset) const {
    std::string all;
    for (std::size_t index = 0; index < m_entries.size(); ++index)
        if (parentOf(m_entries[index].path) == folder && m_entries[index].path != folder)
            all += elementOf(index, offset);
    return all;
}

std::string XarWriter::around(std::string_view table, std::string_view heap) {
    const std::string small = packed(table, Compression::zlib);
    constexpr int headerSize = 28;
    constexpr int sha1Algorithm = 1;
    std::string all = "xar!" + inNetworkOrder(headerSize, 2) + inNetworkOrder(1, 2) + inNetworkOrder(small.size(), 8) +
                      inNetworkOrder(table.size(), 8) + inNetworkOrder(sha1Algorithm, 4);
    all += small;
    all += sha1(small);
    all += heap;
    return all;
}

std::string XarWriter::bytes(const SigningIdentity* identity, Signature signature) const {
    std::string head = "<checksum style=\"sha1\">" + placeElements(0, digestSize) + "</checksum>";
    std::size_t offset = digestSize;
    const std::size_t rsaSize = identity ? identity->rsaSignature(std::string(digestSize, '\0')).size() : 0;
    std::size_t cmsSize = 0;
    if (identity) {
        head += "<signature style=\"RSA\">" + placeElements(offset, rsaSize) + keyInfo(*identity) + "</signature>";
        offset += rsaSize;
    }
    if (identity && signature == Signature::rsaAndCms) {
        cmsSize = identity->cmsSignature(std::string(digestSize, '\0')).size();
        head += "<x-signature style=\"CMS\">" + placeElements(offset, cmsSize) + keyInfo(*identity) + "</x-signature>";
        offset += cmsSize;
    }
    const std::string files = elementsBelow("", offset);
    const std::string table =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xar>" + element("toc", head + files) + "</xar>";
    std::string heap;
    if (identity) {
        const std::string digest = sha1(packed(table, Compression::zlib));
        heap += identity->rsaSignature(digest);
        if (cmsSize > 0) heap += identity->cmsSignature(digest);
    }
    // In the order in which the table tells their places.
    const auto addBelow = [&](const auto& self, const std::string& folder) -> void {
        for (const Entry& entry : m_entries)
            if (parentOf(entry.path) == folder && entry.path != folder) {
                if (entry.hasData) heap += entry.stored;
                self(self, entry.path);
            }
    };
    addBelow(addBelow, "");
    return around(table, heap);
}

}  // namespace tarvik::Practice
