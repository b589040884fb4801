#include "Platform/Files/UnlockCommand.h"

#include "Platform/Files/FileFlags.h"

#include <string_view>

namespace tarvik::UnlockCommand {

namespace {

/// The path as one word of a shell's line, whatever is in it.
std::string quoted(const fs::path& path) {
    constexpr std::string_view harmless = "/._-+,:@%=ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    const std::string& text = path.native();
    if (!text.empty() && text.find_first_not_of(harmless) == std::string::npos) return text;
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'')
            word += "'\\''";
        else
            word += character;
    }
    return word + "'";
}

std::string chosen(std::uint32_t flags, std::uint32_t flag, std::string_view word) {
    return (flags & flag) != 0 ? std::string(word) : std::string();
}

std::string joined(const std::string& words, const std::string& more) {
    return words.empty() || more.empty() ? words + more : words + "," + more;
}

}  // namespace

std::string byChflags(std::uint32_t flags, const fs::path& item) {
    std::string words = chosen(flags, FileFlags::userImmutable, "nouchg");
    words = joined(words, chosen(flags, FileFlags::userAppend, "nouappnd"));
    words = joined(words, chosen(flags, FileFlags::systemImmutable, "noschg"));
    words = joined(words, chosen(flags, FileFlags::systemAppend, "nosappnd"));
    const bool isAdministrators = (flags & FileFlags::administratorLocks) != 0;
    return (isAdministrators ? "sudo chflags " : "chflags ") + words + " " + quoted(item);
}

std::string byChattr(std::uint32_t flags, const fs::path& item) {
    const std::string letters =
        chosen(flags, FileFlags::systemImmutable, "i") + chosen(flags, FileFlags::systemAppend, "a");
    return "sudo chattr -" + letters + " " + quoted(item);
}

std::string ofDenial(const AccessList::Culprit& entry) {
    return "chmod -a \"everyone deny " + std::string(entry.right) + "\" " + quoted(entry.place);
}

std::string showingLists(const fs::path& item) {
    return "ls -led " + quoted(item) + " " + quoted(item.parent_path());
}

std::string ofOwner(const fs::path& item) {
    return "sudo chown -R \"$(id -un)\" " + quoted(item);
}

}  // namespace tarvik::UnlockCommand
