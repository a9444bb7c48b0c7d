#include "LauncherCore/commands/ListRows.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using Rows = std::vector<ListRow>;

TEST(ListRows, anArrayAndAnObjectWithItemsAreTheSameRows) {
    const std::string rows =
        R"([{"title": "A", "subtitle": "s", "arg": "", "icon": "i", "new": [1]},
                                 {"title": "ü", "subtitle": null}])";
    const Rows expected{{.title = "A", .subtitle = "s", .arg = "", .icon = "i"}, {.title = "ü"}};
    EXPECT_EQ(parseListRows(rows), expected);
    EXPECT_EQ(parseListRows(R"({"cache": {}, "items": )" + rows + "}\n"), expected);
    EXPECT_EQ(parseListRows("[]"), Rows());
}

TEST(ListRows, whatIsNeitherIsNothing) {
    const struct {
        const char* reason;
        std::string output;
    } cases[] = {
        {"nothing", ""},
        {"text", "hello"},
        {"a number", "7"},
        {"an object without items", R"({"title": "A"})"},
        {"items that are no array", R"({"items": {"title": "A"}})"},
        {"a row without a title", R"([{"title": "A"}, {"arg": "B"}])"},
        {"a title that is null", R"([{"title": null}])"},
        {"a title that is a number", R"([{"title": 1}])"},
        {"a field of another type", R"([{"title": "A", "icon": {"path": "x"}}])"},
        {"a row that is no object", R"(["A"])"},
        {"more after the end", R"([{"title": "A"}] x)"},
        {"a NUL and more after the end", std::string("[]\0x", 4)},
        {"cut off", R"([{"title": "A"})"},
        {"bytes that are no text", "[{\"title\": \"\xff\"}]"},
        {"nested without sense", std::string(100000, '[')},
    };

    for (const auto& [reason, output] : cases)
        EXPECT_EQ(parseListRows(output), std::nullopt) << reason;
}

} // namespace
} // namespace tessarine
