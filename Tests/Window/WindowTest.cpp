#include "Window/WindowTest.h"

namespace tarvik::test {

namespace {

constexpr std::int64_t gigabyte = 1'000'000'000;

Volume driveAt(const fs::path& mountPath, const std::string& name, std::int64_t total, std::int64_t available) {
    return {.mountPath = mountPath,
            .name = name,
            .totalBytes = total,
            .availableBytes = available,
            .isInternal = false,
            .isBrowsable = true,
            .isReadOnly = false,
            .formatDescription = "ext4"};
}

}  // namespace

WindowTest::WindowTest(const fs::path& drivePath)
    : world(drivePath), backup(world.drive), media(world.folder / "Volumes/Media") {
    makeFolder(media);
    world.volumes->list = {driveAt(backup, "Backup", 1000 * gigabyte, 412 * gigabyte),
                           driveAt(media, "Media", 4000 * gigabyte, 3111 * gigabyte)};
}

void WindowTest::TearDown() {
    if (!opened) return;
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    opened->savePicture(std::string(test->test_suite_name()) + "." + test->name());
    letCopyEnd();
    opened.reset();
}

WindowUnderTest& WindowTest::open(QSize size, bool hasMenus) {
    opened.reset();
    return opened.emplace(world.host, size, hasMenus);
}

WindowUnderTest& WindowTest::openFolders(QSize size) {
    open(size).openTab("folders");
    return *opened;
}

Volume& WindowTest::addVolume(const fs::path& mountPath, const std::string& name) {
    return world.volumes->list.emplace_back(driveAt(mountPath, name, 500 * gigabyte, 80 * gigabyte));
}

fs::path WindowTest::makePhotos(const std::string& name) {
    const fs::path folder = world.home / name;
    makeFileOfSize(folder / "2024/Lake.raw", 3'000'000, 1);
    makeFileOfSize(folder / "2025/Harbour.raw", 2'000'000, 2);
    makeFile(folder / "Read me.txt", "Two trips");
    return folder;
}

void WindowTest::holdCopies() {
    // Half of the tree arrives, so that progress can be seen; the rest comes on the word.
    world.withDitto(R"(mkdir -p "$3" && cp -a "$2"/2024 "$3"/ 2>/dev/null
while [ ! -e ")" + (world.folder / "copies-may-end").native() +
                    R"(" ]; do sleep 0.02; done
rm -rf "$3" && cp -aT "$2" "$3")");
}

void WindowTest::letCopyEnd() {
    makeFile(world.folder / "copies-may-end");
}

void WindowTest::startMove(const fs::path& folder) {
    opened->chooseFolder(folder);
    ASSERT_TRUE(opened->waitUntil([&] { return opened->isEnabled("moveButton"); }));
    opened->click("moveButton");
    opened->click("alertButton-0");
    ASSERT_TRUE(opened->waitUntilShown("jobsPanel"));
}

void WindowTest::move(const fs::path& folder) {
    startMove(folder);
    ASSERT_TRUE(opened->waitUntil([&] { return !opened->state().isRunning(); }));
}

}  // namespace tarvik::test
