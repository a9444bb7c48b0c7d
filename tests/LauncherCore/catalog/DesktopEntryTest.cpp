#include "LauncherCore/catalog/DesktopEntry.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Languages = std::vector<std::string>;

DesktopEntry parsed(std::string_view lines, const Languages& languages = {}) {
    const auto entry = DesktopEntry::parse("[Desktop Entry]\n" + std::string(lines), languages);
    EXPECT_TRUE(entry);
    return entry.value_or(DesktopEntry());
}

TEST(DesktopEntry, readsItsOwnGroupAlone) {
    const auto entry = DesktopEntry::parse("# comment\n\n"
                                           "[Other]\nName=other\n"
                                           "[Desktop Entry]\r\n"
                                           "  Name = Files  \r\n"
                                           "Name=again\n"
                                           "no key and value\n"
                                           "=no key\n"
                                           "Empty=\n"
                                           "[Desktop Action new]\nExec=action\n"
                                           "[Desktop Entry]\nExec=second group\n",
                                           {});
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->text("Name"), "Files"); // the first counts
    EXPECT_EQ(entry->text("Empty"), "");
    EXPECT_EQ(entry->text("Exec"), std::nullopt);
    EXPECT_EQ(entry->keys().size(), 2u);
}

TEST(DesktopEntry, whatIsNoDesktopEntryIsNothing) {
    const struct {
        std::string bytes;
        const char* reason;
    } cases[] = {
        {"", "empty"},
        {"Name=x\n", "no group"},
        {"[Desktop entry]\nName=x\n", "another group"},
        {"[Desktop Entry]\nName=\xff\n", "no UTF-8"},
        {std::string("[Desktop Entry]\nName=a\0b\n", 25), "a NUL"},
        {std::string("\x7f"
                     "ELF\1\1",
                     6),
         "a program"},
    };

    for (const auto& [bytes, reason] : cases)
        EXPECT_FALSE(DesktopEntry::parse(bytes, {})) << reason;
    EXPECT_TRUE(DesktopEntry::parse("\xef\xbb\xbf[Desktop Entry]", {})) << "a byte order mark";
}

TEST(DesktopEntry, readsEscapesAndLists) {
    const auto entry = parsed("Text=\\sa\\tb\\nc\\\\n\\q\\\n"
                              "List=one;;two\\;three;\\sfour\\\\;five\n");
    EXPECT_EQ(entry.text("Text"), " a\tb\nc\\n\\q\\");
    EXPECT_EQ(entry.raw("Text"), "\\sa\\tb\\nc\\\\n\\q\\");
    EXPECT_THAT(entry.list("List"), ElementsAre("one", "two;three", " four\\", "five"));
    EXPECT_THAT(entry.list("None"), IsEmpty());
}

TEST(DesktopEntry, flagsAreTrueOrANumber) {
    for (const auto* yes : {"true", "1", "2", "-1"})
        EXPECT_TRUE(parsed(std::string("F=") + yes).flag("F")) << yes;
    for (const auto* no : {"false", "0", "", "True", "yes", "1x", "99999999999"})
        EXPECT_FALSE(parsed(std::string("F=") + no).flag("F")) << no;
    EXPECT_FALSE(parsed("").flag("F"));
}

TEST(DesktopEntry, translationsAreFoundByTheNearestLocale) {
    const std::string lines =
        "Name=plain\nName[sr]=sr\nName[sr_YU]=sr_YU\n"
        "Name[sr@Latn]=sr@Latn\nName[de]=de\nKeywords=k;\nKeywords[de]=d;e;\n";

    const struct {
        std::string language;
        std::string locale;
        std::string name;
        const char* reason;
    } cases[] = {
        {"", "sr_YU.UTF-8@Latn", "sr_YU", "country before modifier"},
        {"", "sr@Latn", "sr@Latn", "modifier before the language alone"},
        {"", "sr_RS.UTF-8", "sr", "the language alone"},
        {"", "fr_FR.UTF-8", "plain", "no translation"},
        {"fr:de", "sr_YU", "de", "the user's list goes first"},
        {"de", "C", "plain", "no translation at all is wanted"},
        {"de", "C.UTF-8", "plain", "nor in UTF-8"},
        {"", "", "plain", "no locale"},
    };

    for (const auto& [language, locale, name, reason] : cases) {
        const auto languages = desktopLanguages(language, locale);
        EXPECT_EQ(parsed(lines, languages).localized("Name", languages), name) << reason;
    }
    EXPECT_THAT(parsed(lines, {"de"}).localizedList("Keywords", Languages{"de"}),
                ElementsAre("d", "e"));
    // What nobody reads is not kept.
    EXPECT_EQ(parsed(lines, {"de"}).raw("Name[sr]"), std::nullopt);
    EXPECT_THAT(desktopLanguages("", "sr_YU.UTF-8@Latn"),
                ElementsAre("sr_YU@Latn", "sr_YU", "sr@Latn", "sr"));
}

} // namespace
} // namespace tessarine
