#include "codesign/Resources.h"

#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Signatures/SignatureFailure.h"
#include "codesign/ResourceRules.h"

#include <cerrno>
#include <cstring>
#include <string_view>

namespace tarvik::codesign::Resources {

namespace {

using signatures::BundleLayout;
using signatures::SignatureFailure;
using Verdict = ResourceRules::Verdict;

/// Below the sealed folder, what is not resource at all. The ticket is `CodeResources`: in the seals of very old
/// bundles a link of that name led to the seal.
bool isApart(const BundleLayout& layout, std::string_view path) {
    return path == layout.executableName || path == "_CodeSignature" || path == "CodeResources" ||
           path == "_MASReceipt";
}

[[noreturn]] void failUnreadable(const BundleLayout& layout, const fs::path& item, int error) {
    throw SignatureFailure(layout.named, systemErrorText(error), {"In subcomponent: " + item.native()});
}

void requireNothingUnsealed(const BundleLayout& layout) {
    if (layout.contents == layout.root) return;
    const char* sealed = layout.isVersioned ? "Versions" : "Contents";
    const auto names = Files::names(layout.root);
    bool isListed = false;
    for (const std::string& name : names) {
        if (name == sealed) isListed = true;
        const bool isKnown = name == sealed || (layout.isVersioned && Files::isSymbolicLink(layout.root / name));
        if (!isKnown) throw SignatureFailure(layout.named, signatures::Sentences::unsealedRoot);
    }
    if (!isListed) failUnreadable(layout, layout.root, EACCES);
}

Item::Kind kindOf(Files::ItemType type, Verdict verdict) {
    switch (type) {
        case Files::ItemType::symbolicLink:
            return Item::Kind::link;  // No code, wherever it stands.
        case Files::ItemType::regular:
            return verdict == Verdict::nested ? Item::Kind::nestedFile : Item::Kind::file;
        default:
            return Item::Kind::special;
    }
}

}  // namespace

fs::path placeOf(const BundleLayout& layout, const Item& item) {
    return layout.contents / item.path;
}

void forEach(const BundleLayout& layout, const std::function<void(const Item&)>& use) {
    requireNothingUnsealed(layout);
    TreeWalk walk(layout.contents, {});
    if (walk.rootError()) failUnreadable(layout, layout.contents, walk.rootError());
    while (walk.next()) {
        const std::string& path = walk.relativePath();
        if (walk.event() == TreeWalk::Event::unreadable)
            failUnreadable(layout, layout.contents / path, walk.errorNumber());
        const Files::ItemType type = walk.type();
        const bool isFolder = type == Files::ItemType::folder;
        if (isApart(layout, path)) {
            if (isFolder) walk.skipContents();
            continue;
        }
        const Verdict verdict = ResourceRules::standard().verdictOf(path);
        if (isFolder) {
            const bool isCode = verdict == Verdict::nested && std::strchr(walk.name(), '.') != nullptr;
            if (!isCode) continue;
            walk.skipContents();
            use({path, Item::Kind::nestedBundle, false, walk.folderHandle(), walk.name()});
        } else if (verdict != Verdict::unsealed) {
            use({path, kindOf(type, verdict), verdict == Verdict::optional, walk.folderHandle(), walk.name()});
        }
    }
}

}  // namespace tarvik::codesign::Resources
