#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Text/Json.h"
#include "Records/HealthManifest.h"
#include "Support/OrdinaryUser.h"
#include "Support/RealVolume.h"
#include "Support/ScarceMemory.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <fcntl.h>
#include <new>
#include <random>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <thread>
#include <unordered_set>
#include <vector>

namespace tarvik {
namespace {

using Instant = std::chrono::system_clock::time_point;
using test::contentOf;
using test::makeFile;
using test::makeFolder;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Instant autumn{std::chrono::seconds(test::madeNow)};

HealthManifestEntry entryFor(const fs::path& source) {
    return {.sourcePath = source,
            .destinationPath = "/Volumes/T/ExternalTarvik/Apps" / source.filename(),
            .bundleIdentifier = "com.acme.foo",
            .sizeBytes = 4200,
            .movedAt = autumn};
}

constexpr const char* oneEntry = R"([
  {
    "bundleIdentifier": "com.acme.foo",
    "destinationPath": "/Volumes/T/ExternalTarvik/Apps/Foo.app",
    "movedAt": "2026-11-15T17:45:43Z",
    "sizeBytes": 4200,
    "sourcePath": "/Applications/Foo.app"
  }
]
)";

/// As if every handle that the program may have were in use.
class NoHandles {
public:
    NoHandles() {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit none{0, m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoHandles() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    NoHandles(const NoHandles&) = delete;
    NoHandles& operator=(const NoHandles&) = delete;

private:
    rlimit m_before{};
};

class HealthManifestFile : public testing::Test {
protected:
    std::vector<HealthManifestEntry> loadOf(std::string_view content) const {
        makeFile(file, content);
        return HealthManifest::load(world.host);
    }

    std::vector<std::string> namesBesideIt() const {
        auto names = Files::names(file.parent_path());
        std::erase(names, file.filename().native());
        return names;
    }

    FileDescriptor lockedFolder() const {
        FileDescriptor folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        EXPECT_EQ(::flock(folder.get(), LOCK_EX), 0);
        return folder;
    }

    const test::World world;
    const fs::path file = world.home / "Library/Application Support/Tarvik/health-manifest.json";
    const HealthManifestEntry foo = entryFor("/Applications/Foo.app");
    const HealthManifestEntry bar = entryFor("/Applications/Bar.app");
};

TEST_F(HealthManifestFile, StandsInTheUsersLibrary) {
    EXPECT_EQ(HealthManifest::file(world.host), file);
}

TEST_F(HealthManifestFile, IsSortedPrettyJson) {
    HealthManifest::record(world.host, foo);
    EXPECT_EQ(contentOf(file), oneEntry);
    EXPECT_EQ(HealthManifest::load(world.host), std::vector{foo});
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1) << "nothing else is left beside it";
}

TEST_F(HealthManifestFile, HoldsNoKeyForAnUnknownIdentifier) {
    auto unknown = foo;
    unknown.bundleIdentifier.reset();
    HealthManifest::record(world.host, unknown);
    EXPECT_EQ(contentOf(file).find("bundleIdentifier"), std::string::npos);
    EXPECT_EQ(HealthManifest::load(world.host), std::vector{unknown});
}

TEST_F(HealthManifestFile, KeepsOneEntryForAPathAtTheEnd) {
    HealthManifest::record(world.host, foo);
    HealthManifest::record(world.host, bar);
    auto newer = foo;
    newer.sizeBytes = 5;
    HealthManifest::record(world.host, newer);
    EXPECT_EQ(HealthManifest::load(world.host), (std::vector{bar, newer}));
}

TEST_F(HealthManifestFile, TellsPathsApartByTheirExactText) {
    HealthManifest::record(world.host, foo);
    HealthManifest::record(world.host, entryFor("/Applications//Foo.app"));
    HealthManifest::record(world.host, entryFor("/applications/Foo.app"));
    EXPECT_EQ(HealthManifest::load(world.host).size(), 3U);
}

TEST_F(HealthManifestFile, ForgetsEveryEntryOfAPath) {
    const auto twice = nlohmann::json::array({foo, bar, foo});
    makeFile(file, Json::pretty(twice));
    HealthManifest::forget(world.host, foo.sourcePath);
    EXPECT_EQ(HealthManifest::load(world.host), std::vector{bar});
    HealthManifest::forget(world.host, bar.sourcePath);
    EXPECT_EQ(contentOf(file), "[]\n");
}

TEST_F(HealthManifestFile, IsWrittenEvenWhenNothingIsForgotten) {
    HealthManifest::record(world.host, foo);
    const auto before = contentOf(file);
    HealthManifest::forget(world.host, "/Applications/Unknown.app");
    EXPECT_EQ(contentOf(file), before);

    fs::remove_all(file.parent_path());
    HealthManifest::forget(world.host, "/Applications/Unknown.app");
    EXPECT_EQ(contentOf(file), "[]\n");
}

TEST_F(HealthManifestFile, LoadsAsEmptyWhenThereIsNone) {
    EXPECT_TRUE(HealthManifest::load(world.host).empty());
    EXPECT_FALSE(fs::exists(world.home / "Library")) << "a question makes nothing";
    makeFolder(file);
    EXPECT_TRUE(HealthManifest::load(world.host).empty());
}

TEST_F(HealthManifestFile, LoadsAsEmptyWhenItIsDamaged) {
    const std::string whole = oneEntry;
    const std::string withoutAKey = R"([{"destinationPath":"/d","movedAt":"2026-11-15T17:45:43Z","sizeBytes":1}])";
    for (const std::string& content :
         {std::string(), std::string("[]"), std::string("{}"), std::string("null"), std::string("not json"),
          std::string("[null]"), std::string("[[]]"), whole.substr(0, whole.size() / 2), whole + "]",
          std::string("\xEF\xBB\xBF\xFF"), withoutAKey})
        EXPECT_TRUE(loadOf(content).empty()) << content;
    EXPECT_EQ(loadOf(whole), std::vector{foo});
}

TEST_F(HealthManifestFile, LoadsAsEmptyWhenItIsFarTooLarge) {
    const std::string whole = oneEntry;
    const std::string padded = whole + std::string(64 * 1024 * 1024 - whole.size(), ' ');
    EXPECT_EQ(loadOf(padded), std::vector{foo});
    EXPECT_TRUE(loadOf(padded + " ").empty());
    fs::resize_file(file, std::uintmax_t{1} << 40);
    EXPECT_TRUE(HealthManifest::load(world.host).empty());
}

TEST_F(HealthManifestFile, LoadsAsEmptyWhenOneEntryLacksAKey) {
    for (const char* key : {"sourcePath", "destinationPath", "sizeBytes", "movedAt"}) {
        auto json = nlohmann::json::array({foo, bar});
        json[1].erase(key);
        EXPECT_TRUE(loadOf(Json::pretty(json)).empty()) << key;
        json[1][key] = true;
        EXPECT_TRUE(loadOf(Json::pretty(json)).empty()) << key;
    }
    auto json = nlohmann::json::array({foo});
    json[0]["movedAt"] = "2026-11-15 17:45:43";
    EXPECT_TRUE(loadOf(Json::pretty(json)).empty());
    json[0]["movedAt"] = 816457543;
    EXPECT_TRUE(loadOf(Json::pretty(json)).empty());
}

TEST_F(HealthManifestFile, IgnoresKeysThatItDoesNotKnow) {
    auto json = nlohmann::json::array({foo});
    json[0]["colour"] = {{"left", "red"}};
    EXPECT_EQ(loadOf(Json::pretty(json)), std::vector{foo});
}

TEST_F(HealthManifestFile, GivesWayWhenItIsDamagedAndIsKept) {
    auto oneWrong = nlohmann::json::array({foo, bar});
    oneWrong[1]["sizeBytes"] = "much";
    const std::vector<std::string> contents = {"[{]", Json::pretty(oneWrong), "{}"};
    for (const std::string& content : contents) {
        makeFile(file, content);
        HealthManifest::record(world.host, foo);
        EXPECT_EQ(contentOf(file), oneEntry);
    }
    EXPECT_THAT(namesBesideIt(), ElementsAre("health-manifest (damaged 2026-11-15) 2.json",
                                             "health-manifest (damaged 2026-11-15) 3.json",
                                             "health-manifest (damaged 2026-11-15).json"));
    EXPECT_EQ(contentOf(file.parent_path() / "health-manifest (damaged 2026-11-15).json"), contents[0]);
    EXPECT_EQ(contentOf(file.parent_path() / "health-manifest (damaged 2026-11-15) 2.json"), contents[1]);
    EXPECT_EQ(contentOf(file.parent_path() / "health-manifest (damaged 2026-11-15) 3.json"), contents[2]);
}

TEST_F(HealthManifestFile, IsKeptWhenItIsFarTooLarge) {
    makeFile(file, oneEntry);
    fs::resize_file(file, std::uintmax_t{1} << 40);
    HealthManifest::forget(world.host, foo.sourcePath);
    EXPECT_EQ(contentOf(file), "[]\n");
    EXPECT_EQ(fs::file_size(file.parent_path() / "health-manifest (damaged 2026-11-15).json"), std::uintmax_t{1} << 40);
}

TEST_F(HealthManifestFile, GivesWayWithoutATraceWhenItIsEmpty) {
    makeFile(file, "");
    HealthManifest::record(world.host, foo);
    EXPECT_EQ(contentOf(file), oneEntry);
    EXPECT_THAT(namesBesideIt(), IsEmpty());
}

TEST_F(HealthManifestFile, StaysAsItIsWhenItCannotBeReadForTheMoment) {
    HealthManifest::record(world.host, foo);
    {
        const NoHandles noHandles;
        EXPECT_TRUE(HealthManifest::load(world.host).empty());
        HealthManifest::record(world.host, bar);
        HealthManifest::forget(world.host, foo.sourcePath);
    }
    EXPECT_EQ(contentOf(file), oneEntry);
    EXPECT_THAT(namesBesideIt(), IsEmpty());
}

TEST_F(HealthManifestFile, IsEmptyWhenThereIsNoMemoryToReadIt) {
    HealthManifest::record(world.host, foo);
    int requests = 0;
    for (bool isRead = false; !isRead;) {
        try {
            const test::ScarceMemory memory(++requests);
            Files::read(HealthManifest::file(world.host));
            isRead = !test::ScarceMemory::hasStruck();
        } catch (const std::bad_alloc&) {
            continue;
        }
    }
    ASSERT_GT(requests, 2);
    // Beyond those the parser takes over, which cannot even clean up without memory.
    for (int ordinal = 1; ordinal < requests; ++ordinal) {
        std::size_t count = 1;
        {
            const test::ScarceMemory memory(ordinal);
            count = HealthManifest::load(world.host).size();
        }
        EXPECT_EQ(count, 0U) << ordinal;
        {
            const test::ScarceMemory memory(ordinal);
            HealthManifest::record(world.host, bar);
        }
        EXPECT_EQ(contentOf(file), oneEntry) << ordinal;
        EXPECT_THAT(namesBesideIt(), IsEmpty()) << ordinal;
    }
}

TEST_F(HealthManifestFile, GivesWayWhenItMayNotBeReadAndIsKept) {
    makeFile(file, oneEntry);
    fs::permissions(file, fs::perms::none);
    fs::permissions(file.parent_path(), fs::perms::all);
    {
        const test::OrdinaryUser user(world.folder.path());
        HealthManifest::record(world.host, bar);
        EXPECT_EQ(HealthManifest::load(world.host), std::vector{bar});
    }
    EXPECT_EQ(contentOf(file.parent_path() / "health-manifest (damaged 2026-11-15).json"), oneEntry);
}

TEST_F(HealthManifestFile, WaitsForAnotherChange) {
    makeFolder(file.parent_path());
    FileDescriptor other = lockedFolder();
    std::thread change([&] { HealthManifest::record(world.host, bar); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    makeFile(file, oneEntry);
    other.close();
    change.join();
    EXPECT_EQ(HealthManifest::load(world.host), (std::vector{foo, bar}));
}

TEST_F(HealthManifestFile, IsWrittenInTheEndWhateverElseHoldsItsFolder) {
    makeFolder(file.parent_path());
    const FileDescriptor other = lockedFolder();
    HealthManifest::record(world.host, foo);
    EXPECT_EQ(contentOf(file), oneEntry);
}

TEST_F(HealthManifestFile, KeepsPathsThatAreNoText) {
    const auto odd = entryFor("/Applications/caf\xE9.app");
    HealthManifest::record(world.host, odd);
    HealthManifest::record(world.host, foo);
    EXPECT_EQ(HealthManifest::load(world.host), (std::vector{odd, foo}));
    HealthManifest::forget(world.host, "/Applications/caf\xE9.app");
    EXPECT_EQ(HealthManifest::load(world.host), std::vector{foo});
}

TEST_F(HealthManifestFile, KeepsWholeSeconds) {
    auto entry = foo;
    entry.movedAt = autumn + std::chrono::milliseconds(900);
    HealthManifest::record(world.host, entry);
    EXPECT_EQ(HealthManifest::load(world.host), std::vector{foo});
}

TEST_F(HealthManifestFile, SaysNothingWhenItsFolderCannotBeMade) {
    makeFile(world.home / "Library", "a file where a folder should be");
    HealthManifest::record(world.host, foo);
    HealthManifest::forget(world.host, foo.sourcePath);
    EXPECT_EQ(contentOf(world.home / "Library"), "a file where a folder should be");
    EXPECT_TRUE(HealthManifest::load(world.host).empty());
}

TEST_F(HealthManifestFile, SaysNothingWhenSomethingElseStandsInItsPlace) {
    makeFile(file / "inner");
    HealthManifest::record(world.host, foo);
    EXPECT_TRUE(fs::exists(file / "inner"));
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1);
}

TEST_F(HealthManifestFile, StaysAsItIsOnAVolumeThatCannotBeWritten) {
    if (const auto reason = test::RealVolume::unavailableReason(test::RealVolume::Kind::memory))
        TARVIK_SKIP_BECAUSE(*reason);
    const test::TemporaryFolder folder;
    auto volume = test::RealVolume::memory(folder.path(), 1 << 20);
    Host host = world.host;
    host.home = volume.path();
    HealthManifest::record(host, foo);
    volume.remountReadOnly();
    HealthManifest::record(host, bar);
    HealthManifest::forget(host, foo.sourcePath);
    EXPECT_EQ(contentOf(HealthManifest::file(host)), oneEntry);
}

TEST_F(HealthManifestFile, SurvivesAnyContent) {
    const std::string whole = Json::pretty(nlohmann::json::array({foo, bar, entryFor("/caf\xE9")}));
    const std::vector<std::string> words = {"[",       "]",       "{",    "}",  "\"",
                                            ",",       ":",       "null", "-1", "1e999",
                                            "\\u0000", "\\ud800", "\xFF", "T",  "99999999999999999999"};
    std::mt19937 dice(20261115);  // NOLINT: the same inputs on every run.
    const auto below = [&](std::size_t limit) { return dice() % limit; };
    int loaded = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string content = whole;
        for (std::size_t change = 0; change <= below(4); ++change) {
            const std::size_t place = below(content.size() + 1);
            switch (below(4)) {
                case 0:
                    content.insert(place, words[below(words.size())]);
                    break;
                case 1:
                    content.erase(place, below(20));
                    break;
                case 2:
                    content.resize(place);
                    break;
                default:
                    if (place < content.size()) content[place] = static_cast<char>(below(256));
            }
        }
        const auto entries = Json::parsedAs<std::vector<HealthManifestEntry>>(content);
        if (round % 30 == 0) {
            ASSERT_EQ(loadOf(content), entries.value_or(std::vector<HealthManifestEntry>())) << content;
        }
        if (!entries) continue;
        ++loaded;
        ASSERT_EQ(Json::parsedAs<std::vector<HealthManifestEntry>>(Json::pretty(Json::encoded(*entries))), entries)
            << content;
    }
    EXPECT_GT(loaded, 100) << "some changes are harmless";
    EXPECT_LT(loaded, 2900) << "most are not";
    EXPECT_TRUE(loadOf(std::string(200'000, '[')).empty());
}

TEST(HealthManifestEntry, HashesAllItsFields) {
    const auto entry = entryFor("/Applications/Foo.app");
    std::vector<HealthManifestEntry> entries(6, entry);
    entries[0].sourcePath = "/other";
    entries[1].destinationPath = "/other";
    entries[2].bundleIdentifier.reset();
    entries[3].sizeBytes = 1;
    entries[4].movedAt = Instant();
    EXPECT_EQ(std::unordered_set<HealthManifestEntry>(entries.begin(), entries.end()).size(), 6U);
    EXPECT_EQ(std::hash<HealthManifestEntry>()(entries[5]), std::hash<HealthManifestEntry>()(entry));
    for (std::size_t field = 0; field < 5; ++field)
        EXPECT_NE(std::hash<HealthManifestEntry>()(entries[field]), std::hash<HealthManifestEntry>()(entry)) << field;
}

}  // namespace
}  // namespace tarvik
