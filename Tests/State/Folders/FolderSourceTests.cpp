#include "State/EventLoop.h"
#include "State/Folders/FolderSource.h"
#include "State/Threads/Background.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <memory>

namespace tarvik::test {

namespace {

class FolderSourceTest : public testing::Test {
protected:
    /// Shows the source what stands at `path` and waits until it knows all about it.
    void show(const fs::path& path) {
        source->setPath(FilePath(path));
        spinUntil([this] { return !source->isMeasuring(); });
    }

    World world;
    std::unique_ptr<tarvik::FolderSource> source = std::make_unique<tarvik::FolderSource>(world.host);
};

}  // namespace

TEST_F(FolderSourceTest, StartsEmpty) {
    EXPECT_TRUE(source->isEmpty());
    EXPECT_EQ(source->text(), "");
    EXPECT_FALSE(source->isMeasuring());
}

TEST_F(FolderSourceTest, MeasuresAFolder) {
    makeFileOfSize(world.home / "Music/song", 1'024'000);
    source->setPath(FilePath(world.home / "Music"));
    EXPECT_TRUE(source->isMeasuring());
    EXPECT_EQ(source->sizeText(), "");
    EXPECT_EQ(source->name(), "Music");
    spinUntil([this] { return !source->isMeasuring(); });
    EXPECT_EQ(source->sizeText(), "1 MB");
    EXPECT_EQ(source->problem(), "");
    EXPECT_FALSE(source->isLink());
}

TEST_F(FolderSourceTest, SaysWhatCannotBeMoved) {
    makeFile(world.home / "letter");
    show(world.home / "letter");
    EXPECT_EQ(source->problem(), "letter is not a folder. Choose a folder.");
    EXPECT_EQ(source->sizeText(), "");
    show(world.home / "gone");
    EXPECT_EQ(source->problem(), "Nothing stands at this path any more.");
    makeFolder(world.home / "Music");
    show(world.home / "Music");
    EXPECT_EQ(source->problem(), "");
}

TEST_F(FolderSourceTest, KnowsALinkAndMeasuresWhatItLeadsTo) {
    makeFileOfSize(world.foldersOnDrive() / "Music/song", 1'024'000);
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    show(world.home / "Music");
    EXPECT_TRUE(source->isLink());
    EXPECT_EQ(source->targetText().toStdString(), (world.foldersOnDrive() / "Music").native());
    EXPECT_EQ(source->sizeText(), "1 MB");
    EXPECT_EQ(source->problem(), "");
}

TEST_F(FolderSourceTest, SaysWhenALinkLeadsNowhere) {
    makeLink(world.home / "Music", world.foldersOnDrive() / "Music");
    show(world.home / "Music");
    EXPECT_TRUE(source->isLink());
    EXPECT_EQ(source->problem().toStdString(),
              "Music leads to " + (world.foldersOnDrive() / "Music").native() + ", where nothing stands any more.");
}

TEST_F(FolderSourceTest, LooksAnewWhenAsked) {
    makeFolder(world.home / "Music");
    show(world.home / "Music");
    fs::remove(world.home / "Music");
    source->refresh();
    spinUntil([this] { return !source->isMeasuring(); });
    EXPECT_NE(source->problem(), "");
}

TEST_F(FolderSourceTest, ForgetsThePathBeforeTheNewOne) {
    makeFileOfSize(world.home / "Music/song", 1'024'000);
    makeFolder(world.home / "Empty");
    source->setPath(FilePath(world.home / "Music"));
    source->setPath(FilePath(world.home / "Empty"));
    spinUntil([this] { return !source->isMeasuring(); });
    Background::finish();
    EXPECT_EQ(source->sizeText(), "Zero KB");
    source->clear();
    EXPECT_TRUE(source->isEmpty());
    EXPECT_EQ(source->sizeText(), "");
}

TEST_F(FolderSourceTest, TakesAddressesWithAnyBytes) {
    const fs::path odd = world.home / "M\xFCsic 100%";
    makeFolder(odd);
    QUrl url;
    url.setUrl(QStringLiteral("file://") + QString::fromLatin1(QByteArray(odd.c_str()).toPercentEncoding("/")),
               QUrl::StrictMode);
    source->setUrl(url);
    spinUntil([this] { return !source->isMeasuring(); });
    EXPECT_EQ(source->path().path, odd);
    EXPECT_EQ(source->problem(), "");
}

TEST_F(FolderSourceTest, RefusesAddressesThatMayMeanTwoPlaces) {
    makeFolder(world.home / "Music");
    makeLink(world.home / "link", world.drive);
    source->setUrl(QUrl("file://" + QString::fromStdString((world.home / "Music/../Music").native())));
    EXPECT_EQ(source->path().path, world.home / "Music");
    source->setUrl(QUrl("file://" + QString::fromStdString((world.home / "link/../Music").native())));
    EXPECT_TRUE(source->isEmpty());
    EXPECT_TRUE(source->problem().startsWith("With \"..\" behind a symlink, "));
    spinUntil([this] { return !source->isMeasuring(); });
}

TEST_F(FolderSourceTest, RefusesAddressesOfOtherMachines) {
    source->setUrl(QUrl("https://example.org/music"));
    EXPECT_TRUE(source->isEmpty());
    EXPECT_EQ(source->problem(), "Only folders of this machine can be moved.");
}

TEST_F(FolderSourceTest, MayGoInTheMiddleOfAMeasurement) {
    makeFileOfSize(world.home / "Music/song", 1'024'000);
    source->setPath(FilePath(world.home / "Music"));
    source.reset();
    Background::finish();
    spinOnce();
}

}  // namespace tarvik::test
