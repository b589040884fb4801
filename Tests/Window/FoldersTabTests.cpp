#include "State/Folders/GivenFolder.h"
#include "Window/WindowTest.h"

#include <QCoreApplication>
#include <QFileOpenEvent>

#include <algorithm>

namespace tarvik::test {

namespace {

class FoldersTab : public WindowTest {};

bool showsText(QQuickItem* root, const QString& text) {
    if (!root->isVisible()) return false;
    if (root->property("text").toString() == text) return true;
    const auto children = root->childItems();
    return std::any_of(children.begin(), children.end(), [&](QQuickItem* child) { return showsText(child, text); });
}

TEST_F(FoldersTab, SaysWhatItIsFor) {
    auto& window = openFolders();
    EXPECT_EQ(window.text("foldersHeading"), "Move Folder");
    EXPECT_EQ(window.text("foldersText"),
              "Relocate any folder to the target drive and replace it with a symlink. Use for Logic Pro Library, "
              "Application Support data, or any path the Apps tab can't handle.");
    EXPECT_EQ(window.text("sourceTitle"), "Source folder");
    EXPECT_EQ(window.text("quickPicksTitle"), "Common candidates");
    EXPECT_EQ(window.text("sourceName"), "No folder selected");
    EXPECT_EQ(window.text("chooseButton"), "Choose");
    EXPECT_EQ(window.text("moveButton"), "Move & Symlink");
}

TEST_F(FoldersTab, NeedsASource) {
    auto& window = openFolders();
    EXPECT_FALSE(window.isEnabled("moveButton"));
    EXPECT_EQ(window.text("sourceHint"), "Choose a folder to move.");
}

TEST_F(FoldersTab, NeedsATargetDrive) {
    world.volumes->list.clear();
    auto& window = openFolders(small);
    window.chooseFolder(makePhotos());
    EXPECT_TRUE(window.waitForText("sourceHint", "Connect a drive to move it to."));
    EXPECT_FALSE(window.isEnabled("moveButton"));
}

TEST_F(FoldersTab, NeedsAChoiceOfDrive) {
    world.volumes->list.clear();
    addVolume("/Volumes/Second", "Second").isInternal = true;
    auto& window = openFolders(small);
    window.chooseFolder(makePhotos());
    EXPECT_TRUE(window.waitForText("sourceHint", "Pick a target drive in the sidebar."));
    EXPECT_FALSE(window.isEnabled("moveButton"));
    window.click("drive-Second");
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
}

TEST_F(FoldersTab, ShowsTheChosenFolderAndItsSize) {
    auto& window = openFolders();
    const auto photos = makePhotos();
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitForText("sourceSize", "5 MB"));
    EXPECT_EQ(window.text("sourceName"), "Photos");
    EXPECT_EQ(window.text("sourcePath").toStdString(), photos.native());
    EXPECT_EQ(window.text("sourceHint"), "To Backup, 412 GB free");
    EXPECT_TRUE(window.isEnabled("moveButton"));
}

TEST_F(FoldersTab, OpensAPanelToChooseFrom) {
    auto& window = openFolders();
    window.click("chooseButton");
    EXPECT_TRUE(window.waitUntil([&] { return showsText(window.window().contentItem(), "Choose a folder to move"); }));
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntil([&] { return !showsText(window.window().contentItem(), "Choose a folder to move"); }));
}

TEST_F(FoldersTab, TakesADroppedFolder) {
    auto& window = openFolders();
    window.drop(makePhotos(), "sourceCard");
    EXPECT_TRUE(window.waitForText("sourceName", "Photos"));
}

TEST_F(FoldersTab, ForgetsTheFolderWhenItIsCleared) {
    auto& window = openFolders();
    window.chooseFolder(makePhotos());
    window.click("clearSourceButton");
    EXPECT_EQ(window.text("sourceName"), "No folder selected");
    EXPECT_FALSE(window.isEnabled("moveButton"));
}

TEST_F(FoldersTab, SaysWhyAFileCannotBeMoved) {
    auto& window = openFolders();
    makeFile(world.home / "Letter.txt");
    window.chooseFolder(world.home / "Letter.txt");
    EXPECT_TRUE(window.waitUntilShown("sourceProblem"));
    EXPECT_FALSE(window.text("sourceProblem").isEmpty());
    EXPECT_FALSE(window.isEnabled("moveButton"));
}

TEST_F(FoldersTab, ListsOnlyCandidatesThatExist) {
    makeFolder(world.home / "Downloads");
    makeFolder(world.home / "Library/Developer/Xcode/DerivedData");
    auto& window = openFolders();
    EXPECT_TRUE(window.waitUntilShown("quickPick-Downloads"));
    EXPECT_TRUE(window.isShown("quickPick-Xcode DerivedData"));
    EXPECT_FALSE(window.isShown("quickPick-Logic Pro Library"));
    EXPECT_FALSE(window.isShown("quickPick-Claude data"));
    EXPECT_FALSE(window.isShown("noQuickPicks"));
}

TEST_F(FoldersTab, TellsHowLargeTheCandidatesAre) {
    makeFileOfSize(world.home / "Downloads/Film.mov", 2'000'000);
    makeFileOfSize(world.foldersOnDrive() / "DerivedData/index", 3'000'000);
    makeLink(world.home / "Library/Developer/Xcode/DerivedData", world.foldersOnDrive() / "DerivedData");
    auto& window = openFolders();
    EXPECT_TRUE(window.waitForText("quickPick-Downloads/quickPickSize", "2 MB"));
    EXPECT_TRUE(window.waitForText("quickPick-Xcode DerivedData/quickPickSize", "3 MB"));
}

TEST_F(FoldersTab, SaysThatThereIsNoCandidate) {
    EXPECT_TRUE(openFolders(small).waitUntilShown("noQuickPicks"));
}

TEST_F(FoldersTab, FillsTheSourceFromACandidate) {
    makeFileOfSize(world.home / "Downloads/Film.mov", 2'000'000);
    auto& window = openFolders();
    window.click("quickPick-Downloads");
    EXPECT_TRUE(window.waitForText("sourceName", "Downloads"));
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
    EXPECT_TRUE(window.item("quickPick-Downloads").property("isChosen").toBool());
}

TEST_F(FoldersTab, TakesAFolderThatWasDroppedOnTheProgramsIcon) {
    auto& window = open();
    const GivenFolder given(*QCoreApplication::instance(), window.foldersState());
    EXPECT_FALSE(window.isShown("foldersTab"));
    QFileOpenEvent event(QString::fromStdString(makePhotos().native()));
    QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    EXPECT_TRUE(window.waitUntilShown("foldersTab"));
    EXPECT_TRUE(window.waitForText("sourceName", "Photos"));
    EXPECT_TRUE(window.waitUntil([&] { return window.isEnabled("moveButton"); }));
}

TEST_F(FoldersTab, KeepsLongNamesOnOneLine) {
    auto& window = openFolders(small);
    const auto photos = makePhotos("A folder\nwith a line break and " + std::string(200, 'x'));
    const double heightBefore = window.item("sourceCard").height();
    window.chooseFolder(photos);
    EXPECT_TRUE(window.waitUntilShown("clearSourceButton"));
    EXPECT_TRUE(window.waitUntil([&] { return window.item("sourceName").property("truncated").toBool(); }));
    EXPECT_EQ(window.item("sourceName").property("lineCount").toInt(), 1);
    EXPECT_TRUE(window.text("sourceName").startsWith("A folder with a line break"));
    EXPECT_EQ(window.item("sourceCard").height(), heightBefore);
}

TEST_F(FoldersTab, ShowsMarkupInANameAsItIs) {
    auto& window = openFolders();
    window.chooseFolder(makePhotos("<b>bold"));
    EXPECT_TRUE(window.waitForText("sourceName", "<b>bold"));
    EXPECT_EQ(window.item("sourceName").property("textFormat").toInt(), int(Qt::PlainText));
}

}  // namespace

}  // namespace tarvik::test
