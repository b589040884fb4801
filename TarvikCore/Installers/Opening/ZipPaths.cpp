#include "Installers/Opening/ZipPaths.h"

#include "Platform/Text/Text.h"

#include <algorithm>
#include <string>

namespace tarvik {

namespace {

/// The hash FNV-1a, which can be continued byte by byte. Two paths that clash by chance cost a refusal, and no more.
class PathHash {
public:
    void add(char byte) { m_value = (m_value ^ static_cast<unsigned char>(byte)) * 0x100000001B3U; }
    std::uint64_t value() const { return m_value; }

private:
    std::uint64_t m_value = 0xCBF29CE484222325U;
};

/// Calls `use` with each component, by "/" alone or by "\" too, which some readers take for the same.
template <typename Use>
void forEachComponent(std::string_view name, std::string_view separators, const Use& use) {
    while (!name.empty()) {
        const std::size_t end = std::min(name.find_first_of(separators), name.size());
        use(name.substr(0, end));
        name.remove_prefix(std::min(name.size(), end + 1));
    }
}

bool leadsOut(std::string_view name) {
    if (name.starts_with('/') || name.starts_with('\\') || name.find('\0') != std::string_view::npos) return true;
    bool climbs = false;
    forEachComponent(name, "/\\", [&](std::string_view component) { climbs = climbs || component == ".."; });
    return climbs;
}

/// As volumes that fold case and normal forms see it, without what a path says in vain.
std::string keyOf(std::string_view name) {
    std::string path;
    forEachComponent(name, "/", [&](std::string_view component) {
        if (component.empty() || component == ".") return;
        if (!path.empty()) path += '/';
        path += component;
    });
    const bool isPlain =
        std::all_of(path.begin(), path.end(), [](char byte) { return static_cast<signed char>(byte) > 0; });
    if (!isPlain) return Text::nameKey(path);
    std::transform(path.begin(), path.end(), path.begin(),
                   [](char byte) { return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte; });
    return path;
}

std::uint64_t hashOf(std::string_view path) {
    PathHash hash;
    for (const char byte : path) hash.add(byte);
    return hash.value();
}

}  // namespace

void ZipPaths::add(const ZipHeader& entry) {
    add(entry, entry);
}

void ZipPaths::add(const ZipHeader& central, const ZipHeader& local) {
    if (central.kind == ZipHeader::Kind::other || local.kind == ZipHeader::Kind::other) m_isUnsafe = true;
    const bool isLink = central.kind == ZipHeader::Kind::link || local.kind == ZipHeader::Kind::link;
    auto names = central.names();
    if (local.name != central.name || local.unicodeName != central.unicodeName || local.isUtf8 != central.isUtf8)
        for (auto& name : local.names())
            if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
    for (const std::string& name : names) add(name, isLink ? m_links : m_others);
}

void ZipPaths::addAgain(const ZipHeader& local) {
    if (local.kind == ZipHeader::Kind::other) m_isUnsafe = true;
    const bool isLink = local.kind == ZipHeader::Kind::link;
    for (const std::string& name : local.names()) add(name, isLink ? m_localLinks : m_localOthers);
}

void ZipPaths::add(std::string_view name, PathHashes& whole) {
    if (leadsOut(name)) m_isUnsafe = true;
    const std::string path = keyOf(name);
    // What is the folder itself can be nothing else.
    if (path.empty() && (&whole == &m_links || &whole == &m_localLinks)) m_isUnsafe = true;
    addFolders(path);
    whole.add(hashOf(path));
    addOwnerOfAttributes(path);
}

/// A Mac keeps attributes in files of their own, "__MACOSX/FOLDER/._NAME" or "FOLDER/._NAME", and gives them to
/// "FOLDER/NAME" when it unpacks them: so that is a path that is written to as well. A link may have attributes. Where
/// they cannot be given, those of the first kind come to lie at "FOLDER/._NAME".
void ZipPaths::addOwnerOfAttributes(std::string_view path) {
    constexpr std::string_view folderOfAttributes = "__macosx/";
    constexpr std::string_view prefix = "._";
    const std::size_t slash = path.rfind('/');
    const std::size_t nameAt = slash == std::string_view::npos ? 0 : slash + 1;
    if (!path.substr(nameAt).starts_with(prefix)) return;
    std::string owner(path.substr(0, nameAt));
    owner += path.substr(nameAt + prefix.size());
    if (leadsOut(owner)) m_isUnsafe = true;
    if (!owner.starts_with(folderOfAttributes)) return;
    owner.erase(0, folderOfAttributes.size());
    if (leadsOut(owner)) m_isUnsafe = true;
    addFolders(owner);
    m_others.add(hashOf(path.substr(folderOfAttributes.size())));
}

void ZipPaths::addFolders(std::string_view path) {
    const std::size_t end = path.rfind('/');
    if (end == std::string_view::npos || path.substr(0, end) == m_lastFolder) return;
    m_lastFolder = path.substr(0, end);
    PathHash hash;
    for (const char byte : path.substr(0, end)) {
        if (byte == '/') m_folders.add(hash.value());
        hash.add(byte);
    }
    m_folders.add(hash.value());
}

bool ZipPaths::areUnsafe() {
    if (m_isUnsafe || m_links.haveRepetition() || m_localLinks.haveOneInCommonWith(m_localOthers)) return true;
    return m_links.haveOneInCommonWith(m_folders) || m_links.haveOneInCommonWith(m_others) ||
           m_localLinks.haveOneInCommonWith(m_folders) || m_localLinks.haveOneInCommonWith(m_others);
}

}  // namespace tarvik
