#include "AppData/LibraryDataPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarvik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Host hostOf(const fs::path& root) {
    Host host;
    host.root = root;
    return host;
}

TEST(LibraryDataPaths, StandInTheUsersLibrary) {
    EXPECT_THAT(LibraryDataPaths::byBundleId("/Users/ada", "com.acme.editor"),
                ElementsAre("/Users/ada/Library/HTTPStorages/com.acme.editor",
                            "/Users/ada/Library/Caches/com.acme.editor", "/Users/ada/Library/WebKit/com.acme.editor",
                            "/Users/ada/Library/Preferences/com.acme.editor.plist"));
    EXPECT_THAT(
        LibraryDataPaths::byDisplayName("/Users/ada", "Editor"),
        ElementsAre("/Users/ada/Library/Application Support/Editor", "/Users/ada/Library/Caches/Editor",
                    "/Users/ada/Library/Logs/Editor", "/Users/ada/Library/Saved Application State/Editor.savedState"));
    EXPECT_THAT(LibraryDataPaths::supplementalByDisplayName("/Users/ada", "Editor"),
                ElementsAre("/Users/ada/Library/Caches/Editor", "/Users/ada/Library/Logs/Editor",
                            "/Users/ada/Library/Saved Application State/Editor.savedState"));
}

TEST(LibraryDataPaths, StandInTheSystemsLibraryBelowTheRoot) {
    EXPECT_THAT(LibraryDataPaths::systemByBundleId(hostOf("/"), "com.acme.editor"),
                ElementsAre("/Library/Application Support/com.acme.editor", "/Library/Caches/com.acme.editor",
                            "/Library/Preferences/com.acme.editor.plist", "/Library/Logs/com.acme.editor"));
    EXPECT_THAT(LibraryDataPaths::systemByDisplayName(hostOf("/practice"), "Editor"),
                ElementsAre("/practice/Library/Application Support/Editor", "/practice/Library/Caches/Editor",
                            "/practice/Library/Logs/Editor"));
}

TEST(LibraryDataPaths, TakeNamesAsTheyAre) {
    EXPECT_EQ(LibraryDataPaths::byDisplayName("/h", " Größe 2.0 ").at(1), "/h/Library/Caches/ Größe 2.0 ");
    EXPECT_EQ(LibraryDataPaths::byDisplayName("/h", "\xFFx").at(3),
              "/h/Library/Saved Application State/\xFFx.savedState");
}

TEST(LibraryDataPaths, AreNoneWithoutAnIdentifier) {
    EXPECT_THAT(LibraryDataPaths::byBundleId("/Users/ada", std::nullopt), IsEmpty());
    EXPECT_THAT(LibraryDataPaths::systemByBundleId(hostOf("/"), std::nullopt), IsEmpty());
}

TEST(LibraryDataPaths, NeverStandForAWholeFolderOfTheLibrary) {
    for (const char* name : {"", ".", "..", "/", "../..", "/Users/ada/Documents", "a/../.."}) {
        EXPECT_THAT(LibraryDataPaths::byBundleId("/Users/ada", name), IsEmpty()) << name;
        EXPECT_THAT(LibraryDataPaths::byDisplayName("/Users/ada", name), IsEmpty()) << name;
        EXPECT_THAT(LibraryDataPaths::supplementalByDisplayName("/Users/ada", name), IsEmpty()) << name;
        EXPECT_THAT(LibraryDataPaths::systemByBundleId(hostOf("/"), name), IsEmpty()) << name;
        EXPECT_THAT(LibraryDataPaths::systemByDisplayName(hostOf("/"), name), IsEmpty()) << name;
    }
}

}  // namespace
}  // namespace tarvik
