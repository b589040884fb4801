#include "Signatures/BundleLayout.h"

#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/LastComponent.h"
#include "Platform/Text/PropertyList.h"
#include "Signatures/SignatureFailure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarvik::signatures {

namespace {

constexpr std::int64_t largestInfo = std::int64_t{8} << 20;

bool isOrdinaryFile(const fs::path& path) {
    const auto info = Files::infoFollowingLinks(path);
    return info && info->type == Files::ItemType::regular;
}

/// Where a bundle of one form has its list and its program.
struct Form {
    fs::path contents;
    fs::path info;
    fs::path programs;
    bool isVersioned = false;
};

Form formOf(const fs::path& root) {
    const fs::path contents = root / "Contents";
    if (Files::itemExists(contents)) return {contents, contents / "Info.plist", contents / "MacOS"};
    if (Files::itemExists(root / "Versions")) {
        const fs::path current = Files::resolved(root / "Versions/Current").value_or(fs::path());
        if (current.parent_path() == root / "Versions")
            return {current, current / "Resources/Info.plist", current, true};
    }
    const bool isAtTop = Files::itemExists(root / "Info.plist");
    return {root, root / (isAtTop ? "Info.plist" : "Resources/Info.plist"), root};
}

}  // namespace

BundleLayout BundleLayout::at(const fs::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) throw SignatureFailure(path, systemErrorText(errno));
    const auto root = Files::resolved(path);
    if (!root) throw SignatureFailure(path, systemErrorText(ENOENT));
    if (!Files::isFolder(*root))
        throw SignatureFailure(path, isMachO(*root) ? Sentences::unsupported : Sentences::notSigned);

    const Form form = formOf(*root);
    BundleLayout layout{.named = path, .root = *root, .contents = form.contents, .isVersioned = form.isVersioned};
    try {
        layout.infoBytes = Files::read(form.info, largestInfo);
    } catch (const FileError&) {
        throw SignatureFailure(path, Sentences::unknownForm);
    }
    const auto info = PropertyList::parsed(layout.infoBytes);
    const auto* keys = info ? info->as<PropertyList::Dictionary>() : nullptr;
    if (!keys) throw SignatureFailure(path, Sentences::unknownForm);

    const std::string name = root->stem().native();
    const std::string program = info->text("CFBundleExecutable").value_or(name);
    layout.executable = form.programs / program;
    // A name that leads out of the bundle is none.
    if (program.empty() || program.find('/') != std::string::npos || program == ".." || program == "." ||
        !isOrdinaryFile(layout.executable))
        throw SignatureFailure(path, Sentences::unknownForm);
    layout.executableName = layout.executable.native().substr(layout.contents.native().size() + 1);
    layout.infoEntries = keys->size();
    layout.identifier = info->text("CFBundleIdentifier").value_or("");
    if (layout.identifier.empty()) layout.identifier = name;
    layout.isApplication = root->extension() == ".app";
    return layout;
}

bool BundleLayout::hasMachOProgram() const {
    return isMachO(executable);
}

bool BundleLayout::isMachO(const fs::path& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::array<unsigned char, 4> start{};
    if (!file || ::read(file.get(), start.data(), start.size()) != static_cast<ssize_t>(start.size())) return false;
    using Start = std::array<unsigned char, 4>;
    // One of <mach-o/loader.h> for each width and byte order, two of <mach-o/fat.h> for several programs in one.
    constexpr std::array<Start, 6> known = {{{0xFE, 0xED, 0xFA, 0xCE},
                                             {0xFE, 0xED, 0xFA, 0xCF},
                                             {0xCE, 0xFA, 0xED, 0xFE},
                                             {0xCF, 0xFA, 0xED, 0xFE},
                                             {0xCA, 0xFE, 0xBA, 0xBE},
                                             {0xCA, 0xFE, 0xBA, 0xBF}}};
    return std::find(known.begin(), known.end(), start) != known.end();
}

}  // namespace tarvik::signatures
