#include "LauncherCore/query/LearnedRank.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Entries = std::vector<LearnedRank::Entry>;

const std::vector<std::string> groups{"apps", "commands", "files"};

std::vector<std::size_t> order(const Entries& entries,
                               const std::vector<std::string>& favorites = {}) {
    return LearnedRank::order(entries, groups, favorites, 9000);
}

TEST(LearnedRank, tiersComeBeforeScores) {
    const struct {
        LearnedRank::Entry better;
        LearnedRank::Entry worse;
        const char* reason;
    } cases[] = {
        {{"a", "apps", 6000, 600}, {"b", "apps", 8500, 599}, "strong use before recent"},
        {{"a", "apps", 6000, 100}, {"b", "apps", 8999, 99}, "recent use before little"},
        {{"a", "apps", 6000, 1}, {"b", "apps", 8999, 0}, "little use before none"},
        {{"a", "files", 9000, 0}, {"b", "apps", 8500, 2600}, "an exact name before all use"},
        {{"a", "answers", 0, 0}, {"b", "apps", 9001, 900}, "an answer before an exact name"},
        {{"a", "files", 1, 0}, {"b", "web", 9001, 2600}, "anything before the web"},
        {{"a", "apps", 6000, 0}, {"b", "files", 8500, 0}, "the user's groups before the score"},
        {{"a", "files", 6000, 0}, {"b", "unknown", 8500, 0}, "unknown groups last"},
        {{"a", "apps", 7000, 50}, {"b", "apps", 7049, 0}, "use before a better name"},
        {{"a", "apps", 7000, 700}, {"b", "apps", 6900, 700}, "then the score"},
    };

    for (const auto& [better, worse, reason] : cases) {
        EXPECT_THAT(order({better, worse}), ElementsAre(0, 1)) << reason;
        EXPECT_THAT(order({worse, better}), ElementsAre(1, 0)) << reason;
    }
}

TEST(LearnedRank, favoritesLeadInTheirOwnOrder) {
    const Entries entries{{"answer", "answers", 10000, 0},
                          {"weak", "apps", 1, 0},
                          {"web", "web", 1, 0},
                          {"strong", "apps", 9000, 900}};
    EXPECT_THAT(order(entries, {"web", "none", "strong", "web", "weak"}), ElementsAre(2, 3, 1, 0));
}

TEST(LearnedRank, equalEntriesKeepTheirOrder) {
    EXPECT_THAT(order({{"a", "apps", 1, 1}, {"b", "apps", 1, 1}, {"a", "apps", 1, 1}}),
                ElementsAre(0, 1, 2));
    EXPECT_THAT(order({}), IsEmpty());
}

TEST(LearnedRank, storedOrdersFollowTheProgram) {
    const std::vector<std::string> defaults{"a", "b", "c", "d"};

    const struct {
        std::vector<std::string> saved;
        std::vector<std::string> merged;
        const char* reason;
    } cases[] = {
        {{"d", "c", "b", "a"}, {"d", "c", "b", "a"}, "the user's own order"},
        {{"d", "b", "a"}, {"d", "b", "c", "a"}, "a new one after its nearest neighbour"},
        {{"c", "d"}, {"a", "b", "c", "d"}, "without an earlier one at the front, in order"},
        {{"x", "c", "y", "a"}, {"c", "d", "a", "b"}, "what is no more is left out"},
        {{"x"}, {"a", "b", "c", "d"}, "nothing left"},
        {{}, {"a", "b", "c", "d"}, "nothing stored"},
    };

    for (const auto& [saved, merged, reason] : cases)
        EXPECT_EQ(LearnedRank::mergeOrder(saved, defaults), merged) << reason;
}

} // namespace
} // namespace tessarine
