#include "codesign/SealedFile.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Signatures/SignatureFailure.h"
#include "codesign/Detritus.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::codesign::SealedFile {

namespace {

using signatures::BundleLayout;
using signatures::SignatureFailure;
using signatures::Digest::Kind;

/// Opening never waits, as it would for a pipe that nobody writes to.
constexpr int readOnly = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

[[noreturn]] void fail(const BundleLayout& layout, const fs::path& place, int error) {
    throw SignatureFailure(layout.named, systemErrorText(error), {"In subcomponent: " + place.native()});
}

std::vector<std::string> digestsOfOpen(const BundleLayout& layout, const fs::path& place, int file,
                                       const std::vector<Kind>& kinds, bool isStrict) {
    if (isStrict && Detritus::isOn(file)) throw SignatureFailure(layout.named, signatures::Sentences::hasDetritus);
    std::vector<std::string> digests;
    for (const Kind kind : kinds) {
        std::optional<std::string> digest;
        if (::lseek(file, 0, SEEK_SET) == 0) digest = signatures::Digest::ofOpenFile(file, kind);
        if (!digest) fail(layout, place, errno);
        digests.push_back(std::move(*digest));
    }
    return digests;
}

bool isInside(const fs::path& path, const fs::path& root) {
    for (const char* system : {"/System", "/Library"})
        if (path != system && Files::isAtOrBelow(path, system)) return true;
    return Files::isAtOrBelow(path, root);
}

}  // namespace

std::optional<std::vector<std::string>> digestsOf(const BundleLayout& layout, const Resources::Item& item,
                                                  const std::vector<Kind>& kinds, bool isStrict) {
    const FileDescriptor file(::openat(item.folder, item.name, readOnly | O_NOFOLLOW));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0) fail(layout, Resources::placeOf(layout, item), errno);
    if (!S_ISREG(status.st_mode)) return std::nullopt;
    return digestsOfOpen(layout, Resources::placeOf(layout, item), file.get(), kinds, isStrict);
}

std::string digestOfProgram(const BundleLayout& layout, bool isStrict) {
    const FileDescriptor file(::open(layout.executable.c_str(), readOnly));
    if (!file) fail(layout, layout.executable, errno);
    return digestsOfOpen(layout, layout.executable, file.get(), {Kind::sha256}, isStrict).front();
}

std::string linkOf(const BundleLayout& layout, const Resources::Item& item, bool isStrict) {
    const fs::path place = Resources::placeOf(layout, item);
    const auto text = Files::linkText(place);
    if (!text) fail(layout, place, errno);
    if (isStrict) {
        const fs::path written = Files::standardized(place.parent_path() / *text);
        const fs::path real = Files::resolved(place).value_or(written);
        if (!isInside(written, layout.root) || !isInside(real, layout.root))
            throw SignatureFailure(layout.named, signatures::Sentences::linkLeavesBundle);
    }
    return text->native();
}

void requireNoDetritus(const BundleLayout& layout) {
    const FileDescriptor root(::open(layout.root.c_str(), readOnly | O_DIRECTORY));
    if (!root) fail(layout, layout.root, errno);
    if (Detritus::isOn(root.get())) throw SignatureFailure(layout.named, signatures::Sentences::hasDetritus);
}

}  // namespace tarvik::codesign::SealedFile
