#include "Platform/Text/PropertyList.h"
#include "Records/InstallsDBEntryResolver.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <gtest/gtest.h>

namespace tarvik {
namespace {

class InstallsDBEntryResolution : public testing::Test {
protected:
    void makeDatabase() const {
        const fs::path database = InstallsDB::defaultPath(world.host);
        test::makeTrackingDatabase(database);
        test::askDatabase(database,
                          "INSERT INTO installs (install_id, app_name, bundle_id) VALUES "
                          "('byIdentifier', 'Other.app', 'com.acme.foo'), ('byName', 'Foo.app', 'com.acme.old');");
    }
    void makeBundle(const std::string& identifier) const {
        const PropertyList plist = PropertyList::Dictionary{{"CFBundleIdentifier", identifier}};
        test::makeFile(target / "Contents/Info.plist", plist.xml());
    }
    std::string resolved(const fs::path& link = "/Applications/Foo.app") const {
        const auto entry = InstallsDBEntryResolver::resolve(world.host, link, target);
        return entry ? entry->installId : "none";
    }

    const test::World world;
    const fs::path target = world.drive / "Foo.app";
};

TEST_F(InstallsDBEntryResolution, GoesByTheIdentifierFirst) {
    makeDatabase();
    makeBundle("com.acme.foo");
    EXPECT_EQ(resolved(), "byIdentifier");
}

TEST_F(InstallsDBEntryResolution, GoesByTheNameOfTheLinkWhenTheIdentifierIsUnknown) {
    makeDatabase();
    makeBundle("com.acme.unknown");
    EXPECT_EQ(resolved(), "byName");
    EXPECT_EQ(resolved("/Applications/Foo"), "none");
    EXPECT_EQ(resolved("/Applications/Bar.app"), "none");
}

TEST_F(InstallsDBEntryResolution, GoesByTheNameAloneWithoutAnIdentifier) {
    makeDatabase();
    EXPECT_EQ(resolved(), "byName");
    test::makeFile(target / "Contents/Info.plist", "damaged");
    EXPECT_EQ(resolved(), "byName");
    EXPECT_EQ(resolved("/Applications/Bar.app"), "none");
}

TEST_F(InstallsDBEntryResolution, FindsNothingWithoutADatabase) {
    makeBundle("com.acme.foo");
    EXPECT_EQ(resolved(), "none");
    EXPECT_FALSE(fs::exists(world.home / ".claude"));
}

}  // namespace
}  // namespace tarvik
