#include "Platform/Files/AccessList.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarvik {

namespace {

using AccessList::Culprit;
using AccessList::Denial;

const fs::path movies = "/Users/robin/Movies";
const Denial ofItem{.isForEveryone = true, .coversItem = true};
const Denial ofContents{.isForEveryone = true, .coversContents = true};

}  // namespace

TEST(AccessList, NamesTheOneEntryInTheWay) {
    EXPECT_EQ(AccessList::culprit(movies, {ofItem}, {}), (Culprit{movies, "delete"}));
    EXPECT_EQ(AccessList::culprit(movies, {}, {ofContents}), (Culprit{"/Users/robin", "delete_child"}));
    // What concerns others keeps nothing here: what is in the item, and the folder itself.
    EXPECT_EQ(AccessList::culprit(movies, {ofItem, ofContents}, {ofItem}), (Culprit{movies, "delete"}));
}

TEST(AccessList, NamesNoneWhereLiftingItMightNotHelp) {
    EXPECT_EQ(AccessList::culprit(movies, {}, {}), std::nullopt);
    EXPECT_EQ(AccessList::culprit(movies, {ofItem, ofItem}, {}), std::nullopt);
    EXPECT_EQ(AccessList::culprit(movies, {ofItem}, {ofContents}), std::nullopt);
    EXPECT_EQ(AccessList::culprit(movies, {{.isForEveryone = false, .coversItem = true}}, {}), std::nullopt);
    EXPECT_EQ(AccessList::culprit(movies, {{.isForEveryone = true, .isInherited = true, .coversItem = true}}, {}),
              std::nullopt);
    EXPECT_EQ(AccessList::culprit(movies, {ofItem}, {{.coversContents = true}}), std::nullopt)
        << "whether that user is ours is not known";
}

}  // namespace tarvik
