#include "Installers/Inspection/ContentKindSniffer.h"
#include "Installers/Inspection/InstallerKindDetector.h"
#include "Support/Mutator.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace tarvik {
namespace {

using namespace test;
using InstallerKindDetector::detect;

InstallerKind kindOfFile(std::string_view content) {
    const TemporaryFolder folder;
    makeFile(folder / "item", content);
    return detect(folder / "item");
}

TEST(InstallerKindDetector, GoesByTheExtensionInAnyCase) {
    for (const auto& [name, kind] :
         {std::pair("Editor.app", InstallerKind::app), std::pair("Editor.DMG", InstallerKind::dmg),
          std::pair("Editor.zip", InstallerKind::zip), std::pair("Setup.PKG", InstallerKind::pkg),
          std::pair("Suite.mPkg", InstallerKind::mpkg), std::pair("a.sh", InstallerKind::script),
          std::pair("a.bash", InstallerKind::script), std::pair("a.Command", InstallerKind::script),
          std::pair("a.zsh", InstallerKind::script), std::pair("Editor.app/", InstallerKind::app),
          std::pair("Editor.app.zip", InstallerKind::zip), std::pair("Editor.txt", InstallerKind::unknown),
          std::pair("Editor.zip.", InstallerKind::unknown), std::pair(".zip", InstallerKind::unknown),
          std::pair("zip", InstallerKind::unknown), std::pair("Editor.csh", InstallerKind::unknown),
          std::pair("a.zip/", InstallerKind::zip), std::pair("/", InstallerKind::unknown)})
        EXPECT_EQ(detect(fs::path("/nowhere at all") / name), kind) << name;
}

TEST(InstallerKindDetector, LooksAtNothingWhereTheNameTells) {
    const TemporaryFolder folder;
    makeFolder(folder / "Tool.pkg");
    makeFile(folder / "Script.zip", "#!/bin/sh\n");
    EXPECT_EQ(detect(folder / "Tool.pkg"), InstallerKind::pkg);
    EXPECT_EQ(detect(folder / "Script.zip"), InstallerKind::zip);
}

TEST(InstallerKindDetector, TakesWhatBeginsAsAScriptForOne) {
    EXPECT_EQ(kindOfFile("#!/bin/bash\nexit\n"), InstallerKind::script);
    EXPECT_EQ(kindOfFile("#!/usr/bin/env python3\n"), InstallerKind::script);
    EXPECT_EQ(kindOfFile("#!"), InstallerKind::script);
    EXPECT_EQ(kindOfFile(std::string("#!\0\0", 4)), InstallerKind::script);
}

TEST(InstallerKindDetector, KnowsNothingElse) {
    EXPECT_EQ(kindOfFile(""), InstallerKind::unknown);
    EXPECT_EQ(kindOfFile("echo hello\n"), InstallerKind::unknown);
    EXPECT_EQ(kindOfFile(" #!/bin/sh\n"), InstallerKind::unknown);
    EXPECT_EQ(kindOfFile("\xEF\xBB\xBF#!/bin/sh\n"), InstallerKind::unknown);
    const TemporaryFolder folder;
    EXPECT_EQ(detect(folder.path()), InstallerKind::unknown);
    EXPECT_EQ(detect(folder / "missing"), InstallerKind::unknown);
}

TEST(InstallerKindDetector, ReadsTheFirst256BytesAsTheyAre) {
    const std::string before = "#!/bin/sh\n" + std::string(245, 'x');  // 255 bytes
    EXPECT_EQ(kindOfFile(before + "x\xC3\xA9"), InstallerKind::script);
    EXPECT_EQ(kindOfFile(before + "\xC3\xA9"), InstallerKind::unknown) << "the character is cut in two";
    EXPECT_EQ(kindOfFile(before + "x\xFF"), InstallerKind::script);
    EXPECT_EQ(kindOfFile(before + "\xFF"), InstallerKind::unknown);
}

TEST(InstallerKindDetector, FollowsLinksAndNeverWaits) {
    const TemporaryFolder folder;
    makeFile(folder / "script", "#!/bin/sh\n");
    makeLink(folder / "link", "script");
    makeLink(folder / "dangling", "gone");
    makePipe(folder / "pipe");
    makeSocket(folder / "socket");
    EXPECT_EQ(detect(folder / "link"), InstallerKind::script);
    for (const char* name : {"dangling", "pipe", "socket"})
        EXPECT_EQ(detect(folder / name), InstallerKind::unknown) << name;
    EXPECT_EQ(detect("/dev/zero"), InstallerKind::unknown);
}

TEST(InstallerKindDetector, LeavesTheReaderOfAPipeWhatIsInIt) {
    const TemporaryFolder folder;
    makePipe(folder / "pipe");
    const int pipe = ::open((folder / "pipe").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(pipe, 0);
    ASSERT_EQ(::write(pipe, "#!/bin/sh", 9), 9);
    EXPECT_EQ(detect(folder / "pipe"), InstallerKind::unknown);
    char buffer[16];
    EXPECT_EQ(::read(pipe, buffer, sizeof buffer), 9);
    ::close(pipe);
}

TEST(InstallerKindDetector, AgreesWithAPlainReadingOfAnyBytes) {
    const TemporaryFolder folder;
    const fs::path file = folder / "item";
    Mutator mutator(20261122, {"#!", "#", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", std::string(1, '\0'), "\n"});
    const std::string script = "#!/bin/sh\n# \xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80\n" + std::string(240, '.') + "\n";
    int scripts = 0;
    constexpr int tries = 1000;
    for (int each = 0; each < tries; ++each) {
        const std::string bytes = mutator.mutated(script);
        makeFile(file, bytes);
        const auto first = bytes.substr(0, 256);
        // Decoded by hand, without the library: lead bytes, continuations, no surrogates, nothing overlong.
        bool isText = true;
        for (std::size_t at = 0; at < first.size() && isText;) {
            const auto lead = static_cast<unsigned char>(first[at]);
            const std::size_t length = lead < 0x80   ? 1
                                       : lead < 0xC2 ? 0
                                       : lead < 0xE0 ? 2
                                       : lead < 0xF0 ? 3
                                       : lead < 0xF5 ? 4
                                                     : 0;
            if (length == 0 || at + length > first.size()) isText = false;
            unsigned value = length == 2   ? lead & 0x1FU
                             : length == 3 ? lead & 0x0FU
                             : length == 4 ? lead & 0x07U
                                           : lead;
            for (std::size_t next = 1; next < length && isText; ++next) {
                const auto byte = static_cast<unsigned char>(first[at + next]);
                if ((byte & 0xC0U) != 0x80U) isText = false;
                value = value << 6U | (byte & 0x3FU);
            }
            if (length == 3 && (value < 0x800 || (value >= 0xD800 && value < 0xE000))) isText = false;
            if (length == 4 && (value < 0x10000 || value > 0x10FFFF)) isText = false;
            at += std::max<std::size_t>(length, 1);
        }
        const bool isScript = isText && first.starts_with("#!");
        scripts += isScript ? 1 : 0;
        ASSERT_EQ(detect(file), isScript ? InstallerKind::script : InstallerKind::unknown) << "try " << each;
    }
    EXPECT_GT(scripts, tries / 20);
    EXPECT_LT(scripts, tries - tries / 20);
    std::cout << tries << " files tried, " << scripts << " of them scripts\n";
}

}  // namespace
}  // namespace tarvik
