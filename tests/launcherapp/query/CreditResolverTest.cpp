#include "launcherapp/query/CreditResolver.h"

#include "tests/fakes/FakeServices.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

class CreditResolverTest : public testing::Test {
protected:
    ResolvedCredit resolveUrl(const std::string& url) {
        return credits.resolve(*RowCreditSpec::forURLString(url));
    }

    FakeServices services;
    CreditResolver credits{services.catalog, services.platform.files, services.environment};
};

TEST_F(CreditResolverTest, schemesAreCreditedToWhoOpensThem) {
    services.install("fox", "Firewolf", "Icon=fox\nMimeType=x-scheme-handler/https;\n");
    services.install("mail", "Post", "MimeType=x-scheme-handler/mailto;\nNoDisplay=true\n");
    services.startCatalog();

    const auto web = resolveUrl("https://example.com");
    EXPECT_EQ(web.name, "Firewolf");
    EXPECT_TRUE(web.found);
    EXPECT_EQ(web.icon, "fox");

    EXPECT_EQ(resolveUrl("mailto:a@b").name, "Post"); // no row of its own, yet it opens mail

    const auto nobody = resolveUrl("gopher://x");
    EXPECT_EQ(nobody.name, "gopher");
    EXPECT_FALSE(nobody.found);
    EXPECT_EQ(nobody.symbol, "app.dashed");
}

TEST_F(CreditResolverTest, partsOfTheDesktopAreCreditedToWhatTakesThem) {
    services.install("org.x.Files", "Files", "MimeType=inode/directory;\n");
    services.install("org.gnome.Settings", "Settings");
    services.startCatalog();
    for (const auto& spec :
         {RowCreditSpec::finder(), RowCreditSpec::systemSettings(), RowCreditSpec::system()}) {
        const auto& credit = credits.resolve(spec);
        EXPECT_TRUE(credit.found) << credit.name;
        EXPECT_EQ(credit.name, spec.fallbackName()); // the row's own word for it stays
    }
    EXPECT_FALSE(credits.resolve(RowCreditSpec::calendar()).found);
    // A made-up id must not be found, or `found` would prove nothing.
    EXPECT_FALSE(
        credits
            .resolve({.value = RowCreditSpec::App{.bundleIDs = {"com.example.no-such-app-1"},
                                                  .name = "None"}})
            .found);
}

TEST_F(CreditResolverTest, applicationsOnDiskAreCreditedByTheirEntry) {
    const auto path = services.install("edit", "Text Editor", "Icon=edit\n");
    services.platform.files.file("/home/u/bin/tool.sh", "");
    services.platform.files.file("/opt/Old.app/main", "");
    services.platform.files.file("/opt/own.desktop",
                                 "[Desktop Entry]\nType=Application\nName=My Own\n");
    services.startCatalog();

    const struct {
        std::string path;
        std::string name;
        bool found;
    } cases[] = {
        {path, "Text Editor", true},
        {"~/bin/tool.sh", "tool.sh", true},
        {"/opt/Old.app", "Old", true},
        {"/opt/own.desktop", "My Own", true},
        {"/opt/gone.desktop", "gone", false},
    };

    for (const auto& [where, name, found] : cases) {
        const auto& credit = credits.resolve({.value = RowCreditSpec::AppPath{where}});
        EXPECT_EQ(credit.name, name);
        EXPECT_EQ(credit.found, found);
    }
}

TEST_F(CreditResolverTest, aMachineIsAlwaysFound) {
    const RowCreditSpec spec{
        .value = RowCreditSpec::Machine{.name = "studio", .symbol = "desktopcomputer"}};
    EXPECT_TRUE(credits.resolve(spec).found);
    EXPECT_EQ(credits.resolve(spec).symbol, "desktopcomputer");
}

TEST_F(CreditResolverTest, aCreditIsLookedUpOncePerProcess) {
    services.startCatalog();
    EXPECT_FALSE(resolveUrl("https://a").found);
    services.install("fox", "Firewolf", "MimeType=x-scheme-handler/https;\n");
    services.catalog.rescan();
    services.platform.time.settle();
    EXPECT_FALSE(resolveUrl("https://b").found);
}

TEST_F(CreditResolverTest, aPaintNeverWaitsForADisk) {
    services.platform.files.file("/home/u/bin/tool.sh", "");
    services.startCatalog();
    const RowCreditSpec onDisk{.value = RowCreditSpec::AppPath{"~/bin/tool.sh"}};
    EXPECT_EQ(credits.fromMemory(onDisk), nullptr);
    credits.resolve(onDisk);
    ASSERT_NE(credits.fromMemory(onDisk), nullptr);
    EXPECT_TRUE(credits.fromMemory(onDisk)->found);
    EXPECT_NE(credits.fromMemory(*RowCreditSpec::forURLString("https://a")), nullptr);
}

TEST_F(CreditResolverTest, whatWasMissingBeforeTheFirstScanIsLookedUpAgain) {
    services.install("fox", "Firewolf", "MimeType=x-scheme-handler/https;\n");
    EXPECT_FALSE(resolveUrl("https://a").found);
    services.startCatalog();
    EXPECT_TRUE(resolveUrl("https://a").found);
}

} // namespace
} // namespace tessarine
