#include "MovePlan/MoveDestination.h"
#include "Support/HostOf.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

using test::hostOf;

struct Destination {
    const char* source;
    const char* destination;
};

TEST(MoveDestination, KeepsThePathBelowTheHomeOrTheLibrary) {
    const Host host = hostOf("/", "/Users/ada");
    const Destination rows[] = {
        {"/Users/ada/Library/Caches/x", "/D/Library/Caches/x"},
        {"/Users/ada/.config", "/D/.config"},
        {"/Users/ada/a/../b//c/", "/D/b/c"},
        {"/Library/Application Support/x", "/D/System/Library/Application Support/x"},
        {"/Library/x", "/D/System/Library/x"},
        {"/Library", "/D/Library"},
        {"/Library/", "/D/Library"},
        {"/Libraryx/y", "/D/y"},
        {"/Users/ada", "/D/ada"},
        {"/Users/ada/", "/D/ada"},
        {"/Users/adam/Music", "/D/Music"},
        {"/opt/data", "/D/data"},
        {"/Users/ada/\xFF/日本", "/D/\xFF/日本"},
        {"/Users/ada/../ben/x", "/D/x"},
    };
    for (const Destination& row : rows)
        EXPECT_EQ(MoveDestination::dataDestination(host, row.source, "/D"), row.destination) << row.source;
}

TEST(MoveDestination, GoesByTheHomeThatIsGiven) {
    const Host host = hostOf("/", "/Users/ada");
    EXPECT_EQ(MoveDestination::dataDestination(host, "/Users/ben/Music/x", "/D", "/Users/./ben/"), "/D/Music/x");
    EXPECT_EQ(MoveDestination::dataDestination(host, "/Users/ada/Music/x", "/D", "/Users/ben"), "/D/x");
}

TEST(MoveDestination, TakesTheLibraryOfTheHost) {
    const Host host = hostOf("/practice", "/practice/Users/ada");
    EXPECT_EQ(MoveDestination::dataDestination(host, "/practice/Library/Caches/x", "/D"), "/D/System/Library/Caches/x");
    EXPECT_EQ(MoveDestination::dataDestination(host, "/practice/Users/ada/Library/x", "/D"), "/D/Library/x");
    EXPECT_EQ(MoveDestination::dataDestination(host, "/Library/Caches/x", "/D"), "/D/x");
}

}  // namespace
}  // namespace tarvik
