#include "LauncherCore/index/DirectoryListing.h"
#include "launcherapp/query/rows/FileRows.h"
#include "tests/fakes/FakeServices.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

class HintRowsTest : public testing::Test {
protected:
    /// The titles of the list, each with the mark of a hint.
    std::string shown() const {
        std::string text;
        for (const auto& row : model->rows())
            text += (row.kind == RowKind::hint ? "? " : "") + row.title + "|";
        return text;
    }

    FakeServices services;
    std::unique_ptr<SearchModel> model = services.makeModel();
};

TEST_F(HintRowsTest, anEmptyClipboardSaysWhyItIsEmpty) {
    model->enterClipboardMode();
    EXPECT_EQ(shown(), "? Clipboard history is not built yet|");
    model->setQuery("what is typed changes nothing about that");
    EXPECT_EQ(shown(), "? Clipboard history is not built yet|");

    model->families.filterMenu = [] {
        return std::vector<FilterMenuItem>{{std::string(FilterMenuItem::everything), "Everything"},
                                           {"link", "Links"}};
    };
    model->families.clipboard = [](std::string_view query, const std::optional<std::string>&) {
        return query == "pier" ? Rows{{.id = "clip:1", .title = "the pier"}} : Rows();
    };
    model->setQuery("");
    EXPECT_EQ(shown(), "? Nothing has been copied yet|");
    model->setQuery("tide");
    EXPECT_EQ(shown(), "? Nothing here matches “tide”|");
    model->setQuery("pier");
    EXPECT_EQ(shown(), "the pier|");
    model->setQuery("");
    model->commitFilterMenu(1);
    EXPECT_EQ(shown(), "? No copies of this kind|");
    EXPECT_EQ(model->rows().front().subtitle,
              "The list shows only “Links”; Tab shows the other kinds");

    // The last clipping of all was deleted: Tab would show nothing else.
    model->families.filterMenu = [] {
        return std::vector<FilterMenuItem>{{std::string(FilterMenuItem::everything), "Everything"}};
    };
    model->recompute();
    EXPECT_EQ(shown(), "? Nothing has been copied yet|");
}

TEST_F(HintRowsTest, nothingIsLearnedOrDeletedOfAHint) {
    model->families.removeClipping = [](const std::string&) { FAIL(); };
    model->enterClipboardMode();
    EXPECT_FALSE(model->deleteSelected());
    EXPECT_FALSE(model->copySelected());
    model->runSelected();
    EXPECT_TRUE(model->clipboardMode());
    EXPECT_TRUE(services.usage.ranking().topIds(services.platform.queue.now(), 9).empty());
}

TEST_F(HintRowsTest, anEmptyFolderSaysSoOnlyOnceItIsRead) {
    const FileRowSources sources{
        .verbs = model->verbs, .home = {}, .expanded = model->expandedGroups()};
    DirectoryListing listing;
    EXPECT_EQ(browseRows("/a/b", listing, "", sources).front().title, "This folder is empty");
    listing.add("notes", false);
    EXPECT_EQ(browseRows("/a/b", listing, "", sources).front().title, "notes");
    EXPECT_EQ(browseRows("/a/b", listing, "zz", sources).front().title,
              "Nothing here matches “zz”");
    EXPECT_EQ(browseRows("/", listing, "zz", sources).front().subtitle,
              "Only “/” itself is searched");
}

} // namespace
} // namespace tessarine
