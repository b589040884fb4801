#include "State/Shared/DropURLReader.h"

#include <QMimeData>
#include <QVariantList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace tarvik::test {

namespace {

using DropURLReader::decode;
using DropURLReader::itemOf;
using DropURLReader::load;

const QUrl atlas("file:///Applications/Atlas.app");

std::optional<QUrl> loadOf(const QMimeData& data) {
    return load(itemOf(data));
}

}  // namespace

TEST(DropURLReader, KnowsTheTypesOfAPasteboardTheBestFirst) {
    EXPECT_EQ(DropURLReader::supportedTypes(),
              QStringList({"public.file-url", "public.url", "public.item", "public.data",
                           "com.apple.pasteboard.promised-file-url", "NSFilenamesPboardType"}));
}

TEST(DropURLReader, DecodesAnAddress) {
    EXPECT_EQ(decode(atlas), atlas);
    EXPECT_EQ(decode(QUrl("https://example.org/Atlas.app")), QUrl("https://example.org/Atlas.app"));
    EXPECT_EQ(decode(QUrl()), std::nullopt);
}

TEST(DropURLReader, DecodesTheBytesOfAnAddressAndElseTheirText) {
    EXPECT_EQ(decode(QByteArray("file:///Applications/Atlas.app")), atlas);
    EXPECT_EQ(decode(QByteArray("https://example.org/")), QUrl("https://example.org/"));
    EXPECT_EQ(decode(QByteArray("/Applications/Atlas.app")), atlas);
    EXPECT_EQ(decode(QByteArray("file:///Applications/Atlas.app\n")), atlas);
    EXPECT_EQ(decode(QByteArray("")), std::nullopt);
}

TEST(DropURLReader, TakesTextForAPathUnlessItIsTheAddressOfAFile) {
    EXPECT_EQ(decode(QString("file:///Applications/Atlas.app")), atlas);
    EXPECT_EQ(decode(QString("/Applications/Atlas.app")), atlas);
    EXPECT_EQ(decode(QString("/Applications/Atlas.app\n")), atlas);
    EXPECT_EQ(decode(QString(" \t\u00a0/Applications/Atlas.app \r\n")), atlas);
    EXPECT_EQ(decode(QString(" \n")), std::nullopt);
    const auto web = decode(QString("https://example.org/Atlas.app"));
    ASSERT_TRUE(web);
    EXPECT_TRUE(web->isLocalFile());
    EXPECT_EQ(DropURLReader::pathOf(*web), "https://example.org/Atlas.app");
}

TEST(DropURLReader, TakesTheFirstElementOfAListThatHoldsOne) {
    EXPECT_EQ(decode(QVariantList{QUrl(), 7, atlas, QUrl("file:///other")}), atlas);
    EXPECT_EQ(decode(QStringList{"", "/Applications/Atlas.app"}), atlas);
    EXPECT_EQ(decode(QVariantList{}), std::nullopt);
}

TEST(DropURLReader, FindsNothingInAnythingElse) {
    EXPECT_EQ(decode(QVariant()), std::nullopt);
    EXPECT_EQ(decode(42), std::nullopt);
}

TEST(DropURLReader, KeepsTheBytesOfAPath) {
    for (const char* path : {"/A b/\xff%20#?.app", "/with:colon;and@more", "relative/path", "//double"})
        EXPECT_EQ(DropURLReader::pathOf(DropURLReader::urlOf(path)), path);
    EXPECT_EQ(DropURLReader::pathOf(*decode(QByteArray("/Broken\xff.app\n"))), "/Broken\xff.app");
    EXPECT_EQ(DropURLReader::pathOf(QUrl("https://example.org/")), std::nullopt);
}

TEST(DropURLReader, FindsNoPathWhereOneHoldsANul) {
    EXPECT_EQ(DropURLReader::pathOf(QUrl("file:///Applications/Atlas.app%00.txt")), std::nullopt);
    EXPECT_EQ(DropURLReader::pathOf(QUrl("file:///%00")), std::nullopt);
    EXPECT_EQ(DropURLReader::pathOf(*decode(QByteArray("/Atlas.app\0.txt", 15))), std::nullopt);
    EXPECT_EQ(DropURLReader::pathOf(QUrl("file:///Atlas%2500.app")), "/Atlas%00.app");
}

TEST(DropURLReader, GoesOnWithTheNextTypeWhenOneHoldsNothing) {
    std::vector<QString> asked;
    const DropURLReader::Item item{
        {"public.data", "NSFilenamesPboardType", "unknown", "public.file-url"}, [&](const QString& type) {
            asked.push_back(type);
            return type == "NSFilenamesPboardType" ? QVariant(QStringList{"/a"}) : QVariant();
        }};
    EXPECT_EQ(load(item), QUrl("file:///a"));
    EXPECT_THAT(asked, testing::ElementsAre("public.file-url", "public.data", "NSFilenamesPboardType"));
}

TEST(DropURLReader, FindsNothingWhereNoTypeIsSupported) {
    QMimeData picture;
    picture.setData("image/png", "\x89PNG");
    EXPECT_EQ(loadOf(picture), std::nullopt);
    EXPECT_TRUE(itemOf(picture).types.isEmpty());
    EXPECT_EQ(loadOf(QMimeData()), std::nullopt);
}

TEST(DropURLReader, ReadsWhatAFileManagerDrops) {
    QMimeData files;
    files.setUrls({QUrl("https://example.org/"), atlas, QUrl("file:///other")});
    files.setText("something else");
    EXPECT_EQ(loadOf(files), atlas) << "a file goes before any other address";
    QMimeData many;
    QList<QUrl> urls;
    for (int number = 0; number < 200; ++number) urls.push_back(QUrl("file:///" + QString::number(number)));
    many.setUrls(urls);
    EXPECT_EQ(loadOf(many), QUrl("file:///0"));
}

TEST(DropURLReader, ReadsWhatABrowserAndATerminalDrop) {
    QMimeData link;
    link.setUrls({QUrl("https://example.org/Atlas.app")});
    EXPECT_EQ(loadOf(link), QUrl("https://example.org/Atlas.app"));
    QMimeData text;
    text.setText("/Applications/Atlas.app\n");
    EXPECT_EQ(loadOf(text), atlas);
    QMimeData names;
    names.setData("NSFilenamesPboardType", "/Applications/Atlas.app");
    EXPECT_EQ(loadOf(names), atlas);
}

}  // namespace tarvik::test
