#include "LauncherCore/text/Collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace tessarine {
namespace {

std::vector<std::string> sorted(std::string_view locale, std::vector<std::string> names) {
    const Collation collation(locale);
    std::ranges::sort(names, {}, [&](const auto& name) { return collation.sortKey(name); });
    return names;
}

TEST(Collation, followsTheReadersAlphabet) {
    const std::vector<std::string> names{"Zebra", "apple", "Ölkanne", "Bild", "Åre"};

    const struct {
        std::string locale;
        std::vector<std::string> order;
        const char* reason;
    } cases[] = {
        {"de_DE.UTF-8",
         {"apple", "Åre", "Bild", "Ölkanne", "Zebra"},
         "umlauts beside their letter"},
        {"sv_SE.UTF-8", {"apple", "Bild", "Zebra", "Åre", "Ölkanne"}, "Swedish ends in å, ä, ö"},
        {"C", {"apple", "Åre", "Bild", "Ölkanne", "Zebra"}, "no code-point order for people"},
        {"xx_YY.nonsense", {"apple", "Åre", "Bild", "Ölkanne", "Zebra"}, "unknown"},
        {"", {"apple", "Åre", "Bild", "Ölkanne", "Zebra"}, "none"},
    };

    for (const auto& [locale, order, reason] : cases)
        EXPECT_EQ(sorted(locale, names), order) << reason;
}

TEST(Collation, ignoresCaseAndNotAccents) {
    const Collation collation("en_US");
    EXPECT_EQ(collation.sortKey("Files"), collation.sortKey("fILES"));
    EXPECT_LT(collation.sortKey("resume"), collation.sortKey("résumé"));
    EXPECT_LT(collation.sortKey(std::string(5000, 'a')), collation.sortKey(std::string(5000, 'b')));
}

} // namespace
} // namespace tessarine
