#include "launcherapp/sources/DemonstrationSources.h"

#include "LauncherCore/text/Graphemes.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

class DemonstrationSourcesTest : public testing::Test {
protected:
    DemonstrationSourcesTest() {
        model->verbs.copyText = [this](const std::string& text) { copied.push_back(text); };
        addDemonstrationSources(*model);
    }

    FakeServices services;
    std::unique_ptr<SearchModel> model = services.makeModel();
    std::vector<std::string> copied;
};

TEST_F(DemonstrationSourcesTest, aCopyIsOfTheClippingAndNotOfItsRow) {
    const auto rows = model->families.clipboard("", std::nullopt);
    ASSERT_FALSE(rows.empty());
    for (const auto& row : rows) {
        SCOPED_TRACE(row.title);
        const auto preview = model->families.preview(row);
        ASSERT_TRUE(preview);
        copied.clear();
        row.primary();
        ASSERT_EQ(copied.size(), 1u);
        if (const auto* text = std::get_if<RowPreview::Text>(&preview->content)) {
            EXPECT_EQ(copied.front(), text->text);
            EXPECT_EQ(preview->facts.front(),
                      std::to_string(Graphemes::count(text->text)) + " characters");
        } else if (const auto* files = std::get_if<RowPreview::Files>(&preview->content)) {
            EXPECT_TRUE(copied.front().starts_with(files->paths.front() + "\n"));
            EXPECT_EQ(preview->facts.front(), std::to_string(files->paths.size()) + " files");
        } else {
            EXPECT_EQ(copied.front(), row.title);
        }
    }
}

TEST_F(DemonstrationSourcesTest, theFilterMenuCountsWhatItsFiltersLeave) {
    std::int64_t filtered = 0;
    const auto items = model->families.filterMenu();
    for (const auto& item : items) {
        if (item.key == FilterMenuItem::everything)
            continue;
        SCOPED_TRACE(item.title);
        EXPECT_EQ(model->families.resolveFilter(item.title), item.key);
        const auto rows = model->families.clipboard("", item.key);
        EXPECT_EQ(static_cast<std::int64_t>(rows.size()), item.count);
        filtered += item.count;
    }
    EXPECT_EQ(items.front().count, filtered) << "each clipping has its filter";
}

TEST_F(DemonstrationSourcesTest, anInventedNumberIsCopiedAndNeverCalled) {
    const auto people = model->families.people("wren", ListMode::mixed);
    ASSERT_EQ(people.size(), 1u);
    const auto id = model->families.personID(people.front());
    ASSERT_TRUE(id);
    const auto fields = model->families.personCard(*id, "mobile");
    ASSERT_EQ(fields.size(), 1u);
    fields.front().primary();
    EXPECT_THAT(copied, ElementsAre("+44 20 7946 0018"));
}

} // namespace
} // namespace tessarine
