#include "Faults/FaultTrees.h"

#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Support/Bundles.h"
#include "Support/Tree.h"

#include <algorithm>
#include <string>
#include <sys/xattr.h>

namespace tarvik::test::FaultTrees {

namespace {

void tag(const fs::path& item) {
    ::setxattr(item.c_str(), "user.tag", "blue", 4, 0);
}

}  // namespace

void makeFolderOfAllKinds(const fs::path& tree) {
    makeFileOfSize(tree / "song", 20'000);
    makeFile(tree / "sub/.hidden", "notes");
    makeFile(tree / "sub/deep/odd \xff\n name", "odd");
    makeLink(tree / "sub/link", "../song");
    makeLink(tree / "dangling", "nowhere");
    makeFolder(tree / "empty");
    fs::create_hard_link(tree / "song", tree / "sub/same song");
    makeFile(tree / "sealed/inside", "read only");
    fs::permissions(tree / "sealed", fs::perms::owner_read | fs::perms::owner_exec);
    makeFile(tree / "tagged", "with a tag");
    tag(tree / "tagged");
    makeFile(tree / "holes", "start");
    fs::resize_file(tree / "holes", 50'000);
}

void makeCrowd(const fs::path& tree) {
    for (int number = 0; number < 80; ++number)
        makeFileOfSize(tree / std::to_string(number % 6) / std::to_string(number), 500, static_cast<unsigned>(number));
}

void makeApplication(const fs::path& bundle) {
    const std::string name = bundle.stem();
    makeBundle(bundle, {{"CFBundleName", name},
                        {"CFBundleIdentifier", "org.example." + name},
                        {"CFBundleExecutable", "program"},
                        {"CFBundleIconFile", "Icon"}});
    makeFileOfSize(bundle / "Contents/MacOS/program", 9'000);
    fs::permissions(bundle / "Contents/MacOS/program", fs::perms(0755));
    makeFileOfSize(bundle / "Contents/Resources/Icon.icns", 3'000, 2);
    tag(bundle / "Contents/Resources/Icon.icns");
    makeLink(bundle / "Contents/Frameworks/Kit.framework/Versions/Current", "A");
    makeFile(bundle / "Contents/Frameworks/Kit.framework/Versions/A/Kit", name);
    fs::permissions(bundle / "Contents/Frameworks/Kit.framework/Versions/A/Kit", fs::perms(0444));
}

void makeData(const fs::path& tree, unsigned seed) {
    makeFileOfSize(tree / "state", 4'000, seed);
    makeLink(tree / "deep/latest", "../state");
}

bool isSame(const fs::path& tree, const fs::path& reference) {
    if (!Files::isFolder(tree) || Files::names(tree) != Files::names(reference)) return false;
    if (pictureOf(tree) != pictureOf(reference)) return false;
    for (const auto& entry : fs::recursive_directory_iterator(reference)) {
        if (!entry.is_regular_file() || entry.is_symlink()) continue;
        if (contentOf(entry.path()) != contentOf(tree / fs::relative(entry.path(), reference))) return false;
    }
    return true;
}

bool isSameIn(const fs::path& folder, const fs::path& reference) {
    if (isSame(folder, reference)) return true;
    const auto names = Files::names(folder);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return Files::isFolder(folder / name) && isSameIn(folder / name, reference);
    });
}

void copy(const fs::path& from, const fs::path& to) {
    fs::create_directories(to.parent_path());
    CommandRunner::run("/bin/cp", {"-a", from.native(), to.native()});
}

}  // namespace tarvik::test::FaultTrees
