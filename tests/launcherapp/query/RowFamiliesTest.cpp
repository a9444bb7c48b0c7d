#include "launcherapp/query/RowFamilies.h"

#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tessarine {
namespace {

/// A mode is offered, and its word leads there, only while its source is set.
TEST(RowFamilies, aModeThatIsNotThereIsNotOffered) {
    FakeServices services;
    services.install("tabby", "T for Tabs");
    services.startCatalog();
    const auto model = services.makeModel();
    const auto offers = [&](const std::string& query, const std::string& id) {
        model->setQuery(query);
        return std::ranges::count(model->rows(), id, &ResultRow::id) == 1;
    };
    const std::string app = "/usr/share/applications/tabby.desktop";
    EXPECT_TRUE(offers("t", app)) << "its word is a word like any other";
    EXPECT_FALSE(offers("tabs", "keyword:tabs"));
    model->families.tabs = [](std::string_view, ListMode mode) {
        return mode == ListMode::keyword ? Rows{{.id = "a tab"}} : Rows{};
    };
    EXPECT_TRUE(offers("tabs", "keyword:tabs"));
    EXPECT_TRUE(offers("t x", "a tab"));

    EXPECT_FALSE(offers("lef", "keyword:windowLeft"));
    model->families.windows = [](std::string_view) { return Rows{}; };
    EXPECT_TRUE(offers("lef", "keyword:windowLeft"));
    EXPECT_TRUE(offers("quit", "keyword:quit"));
}

} // namespace
} // namespace tessarine
