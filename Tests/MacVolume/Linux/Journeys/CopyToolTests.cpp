// What the copy tool makes of names that a drive takes for one.
#include "MacMachine.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/ChildProcess.h"
#include "Platform/Processes/StreamReader.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarvik::test {

namespace {

using Names = std::vector<std::string>;

class CopyTool : public OnMacVolumes {
protected:
    fs::path tree() const { return mac->folder / "tree"; }
    fs::path copy() const { return mac->extended / "copy"; }

    /// Copies the tree, which must go without a word.
    void copyTree() const {
        std::string words;
        ChildProcess ditto = ChildProcess::start(programOfThisBuild("stand-ins/ditto"), {"--rsrc", tree(), copy()});
        StreamReader reader;
        reader.add(ditto.standardError(), [&](std::string_view piece) { words += piece; });
        reader.add(ditto.standardOutput(), {});
        reader.readToEnd();
        EXPECT_EQ(ditto.wait(), 0);
        EXPECT_EQ(words, "");
    }
};

}  // namespace

TEST_F(CopyTool, LosesOneOfTwoFiles) {
    makeFile(tree() / "name", "one");
    makeFile(tree() / "NAME", "other");
    makeLink(tree() / "link", "here");
    makeLink(tree() / "LINK", "there");
    copyTree();
    EXPECT_EQ(Files::names(copy()).size(), 2U);
    const std::string content = contentOf(copy() / "name");
    EXPECT_TRUE(content == "one" || content == "other") << content;
    const auto text = Files::linkText(copy() / "link");
    EXPECT_TRUE(text == "here" || text == "there");
}

TEST_F(CopyTool, MergesTwoFolders) {
    makeFile(tree() / "E\u0301te\u0301/first", "1");
    makeFile(tree() / "\u00C9T\u00C9/second", "2");
    copyTree();
    EXPECT_EQ(Files::names(copy()).size(), 1U);
    EXPECT_EQ(Files::names(copy() / "\u00E9t\u00E9"), (Names{"first", "second"}));
}

TEST_F(CopyTool, KeepsAFileThatHadBothNames) {
    makeFile(tree() / "hard", "both");
    fs::create_hard_link(tree() / "hard", tree() / "HARD");
    copyTree();
    EXPECT_EQ(Files::names(copy()).size(), 1U);
    EXPECT_EQ(contentOf(copy() / "hard"), "both");
}

}  // namespace tarvik::test
