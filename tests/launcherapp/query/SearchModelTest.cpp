#include "launcherapp/query/SearchModel.h"

#include "LauncherCore/query/Matcher.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SearchModelTest : public testing::Test {
protected:
    std::vector<std::string> titles(std::string query) {
        model.setQuery(std::move(query));
        std::vector<std::string> result;
        for (const auto& row : model.rows())
            result.push_back(row.title);
        return result;
    }

    FakeServices services;
    SearchModel model{services.catalog};
};

TEST_F(SearchModelTest, theOneMatchingRuleOrdersApplications) {
    services.install("x1", "BetterTouchPad");
    services.install("x2", "Clauden");
    services.install("x3", "CleanShot X");
    services.install("x4", "CrispLabel");
    services.install("x5", "Google Chrome");
    services.install("x6", "Gecko");
    services.install("x7", "World Clock Pro");
    services.install("x8", "Café Müller");
    services.install("x9", "TrayMenu");
    services.install("x10", "文字 入力");
    services.install("x11", "🎨 Paint");
    services.install("x12", "מחשבון");
    services.startCatalog();

    const struct {
        std::string query;
        std::vector<std::string> titles;
        const char* reason;
    } cases[] = {
        {"cl", {"Clauden", "CleanShot X", "CrispLabel", "World Clock Pro"}, "bands in order"},
        {"gc", {"Google Chrome"}, "initials, and no subsequence"},
        {"goo chr", {"Google Chrome"}, "two word beginnings"},
        {"menu", {"TrayMenu"}, "a camel-case word"},
        {"CAFE mu", {"Café Müller"}, "accents and case are folded"},
        {"入力", {"文字 入力"}, "a later word of another script"},
        {"paint", {"🎨 Paint"}, "an emoji is no letter"},
        {"מחש", {"מחשבון"}, "right to left"},
        {"ouch", {}, "the inside of a word"},
    };

    for (const auto& [query, expected, reason] : cases)
        EXPECT_EQ(titles(query), expected) << reason;
}

TEST_F(SearchModelTest, aRowIsWhatTheCatalogSays) {
    const auto path = services.install("org.x.Web", "Web", "Keywords=browser;\nIcon=web\n");
    services.startCatalog();
    services.platform.windows.open = {{.id = 7, .className = "org.x.Web"}};
    model.setQuery(" browser ");
    ASSERT_EQ(model.rows().size(), 1u);
    const auto& row = model.rows()[0];
    EXPECT_EQ(row.id, path);
    EXPECT_EQ(row.title, "Web");
    EXPECT_EQ(row.group, "apps");
    EXPECT_EQ(row.kind, RowKind::app);
    EXPECT_EQ(row.score, Matcher::exact); // the alias counts like the name
    EXPECT_TRUE(row.running);
    EXPECT_EQ(row.url, "file:///usr/share/applications/org.x.Web.desktop");
    row.primary();
    EXPECT_THAT(services.platform.windows.calls, ElementsAre(std::pair("activate", 7u)));
}

TEST_F(SearchModelTest, noTextGivesNoRowsAndManyAreCut) {
    for (int i = 0; i < 70; ++i)
        services.install("app" + std::to_string(i), "App " + std::to_string(i));
    services.install("last", "App");
    services.startCatalog();
    EXPECT_THAT(titles("  "), IsEmpty());
    const auto rows = titles("app");
    EXPECT_EQ(rows.size(), SearchModel::maximumRows);
    EXPECT_EQ(rows.front(), "App"); // the cut comes after the ordering
}

} // namespace
} // namespace tessarine
