#include "Program/AppleDouble.h"

#include "Platform/Files/FileDescriptor.h"
#include "Program/Refusal.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>
#include <vector>

namespace tarvik::macvolume::AppleDouble {

namespace {

constexpr std::uint32_t magic = 0x00051607;
constexpr std::uint32_t version = 0x00020000;
constexpr std::string_view filler = "Mac OS X        ";
constexpr std::uint32_t finderInformation = 9;
/// The header with one entry, and what the Finder keeps itself, which is none here.
constexpr std::uint32_t headerSize = 26 + 12;
constexpr std::uint32_t finderSize = 32;

void put(std::string& bytes, std::uint32_t number) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(number >> shift & 0xFFU);
}

/// Reads from the front of bytes that may end anywhere.
class Reader {
public:
    explicit Reader(std::string_view bytes) : m_rest(bytes) {}

    bool isAtEnd() const { return m_rest.empty(); }
    std::optional<std::string_view> take(std::size_t count) {
        if (m_rest.size() < count) return std::nullopt;
        const auto taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }
    std::optional<std::uint32_t> number() {
        const auto bytes = take(4);
        if (!bytes) return std::nullopt;
        std::uint32_t number = 0;
        for (const char byte : *bytes) number = number << 8U | static_cast<unsigned char>(byte);
        return number;
    }
    std::optional<std::string_view> text() {
        const auto length = number();
        return length ? take(*length) : std::nullopt;
    }

private:
    std::string_view m_rest;
};

std::string contentAt(const Backing& backing, const std::string& place) {
    std::string content;
    const FileDescriptor file(::openat(backing.handle(), place.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::array<char, 4096> buffer{};
    while (file) {
        const ssize_t length = ::read(file.get(), buffer.data(), buffer.size());
        if (length <= 0) break;
        content.append(buffer.data(), static_cast<std::size_t>(length));
    }
    return content;
}

}  // namespace

std::string encoded(const Attributes& attributes) {
    std::string entry(finderSize, '\0');
    for (const auto& [name, value] : attributes) {
        for (const std::string* text : {&name, &value}) {
            put(entry, static_cast<std::uint32_t>(text->size()));
            entry += *text;
        }
    }
    std::string bytes;
    put(bytes, magic);
    put(bytes, version);
    bytes += filler;
    bytes += '\0';
    bytes += '\1';  // The number of entries.
    put(bytes, finderInformation);
    put(bytes, headerSize);
    put(bytes, static_cast<std::uint32_t>(entry.size()));
    return bytes + entry;
}

std::optional<Attributes> decoded(std::string_view bytes) {
    Reader reader(bytes);
    if (reader.number() != magic || !reader.take(headerSize - 4) || !reader.take(finderSize)) return std::nullopt;
    Attributes attributes;
    while (!reader.isAtEnd()) {
        const auto name = reader.text();
        const auto value = reader.text();
        if (!name || !value) return std::nullopt;
        attributes.emplace(*name, *value);
    }
    return attributes;
}

std::string placeFor(const std::string& item) {
    return Backing::joined(Backing::folderOf(item), "._" + Backing::nameOf(item));
}

bool isOne(const std::string& place) {
    return Backing::nameOf(place).starts_with("._");
}

Attributes read(const Backing& backing, const std::string& item) {
    return decoded(contentAt(backing, placeFor(item))).value_or(Attributes());
}

void write(const Backing& backing, const std::string& item, const Attributes& attributes) {
    if (attributes.empty()) return removeFor(backing, item);
    const FileDescriptor file(::openat(backing.handle(), placeFor(item).c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0777));
    if (!file) refuse(errno);
    const std::string bytes = encoded(attributes);
    if (::write(file.get(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) refuse(EIO);
}

void removeFor(const Backing& backing, const std::string& item) {
    if (!isOne(item)) ::unlinkat(backing.handle(), placeFor(item).c_str(), 0);
}

void renameFor(const Backing& backing, const std::string& from, const std::string& to) {
    if (isOne(from)) return;
    const std::string destination = placeFor(to);
    if (::renameat(backing.handle(), placeFor(from).c_str(), backing.handle(), destination.c_str()) != 0)
        ::unlinkat(backing.handle(), destination.c_str(), 0);  // Of what has been replaced.
}

void removeOrphans(const Backing& backing, const std::string& folder) {
    const auto entries = backing.entries(folder);
    if (!std::all_of(entries.begin(), entries.end(), [](const auto& entry) { return isOne(entry.name); })) return;
    for (const auto& entry : entries) ::unlinkat(backing.handle(), Backing::joined(folder, entry.name).c_str(), 0);
}

}  // namespace tarvik::macvolume::AppleDouble
