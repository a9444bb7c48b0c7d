#include "LauncherCore/clipboard/ClipboardEntry.h"

#include "LauncherCore/clipboard/ClipIdentity.h"
#include "LauncherCore/text/Graphemes.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

TEST(ClipText, remembersWhatASearchAsksOf) {
    const struct {
        std::string text;
        std::string folded;
        std::size_t characters;
        const char* reason;
    } cases[] = {
        {"", "", 0, "nothing"},
        {"plain", "plain", 5, "folded as it is"},
        {"ÇAFÉ\r\nx", "cafe\r\nx", 6, "the two bytes of a line end are one character"},
        {"👩‍🎨!", "👩‍🎨!", 2, "a joined emoji"},
        {"a\xff\xfe", "a\uFFFD\uFFFD", 3, "bytes that are no text"},
    };

    for (const auto& [text, folded, characters, reason] : cases) {
        SCOPED_TRACE(reason);
        const ClipText made(text);
        EXPECT_EQ(made.folded(), folded);
        EXPECT_EQ(made.characters(), characters);
    }
    EXPECT_EQ(ClipText("a\xff").string(), "a\uFFFD");
    EXPECT_EQ(ClipText(), ClipText(""));
}

TEST(ClipIdentity, isOfTheContentAndItsKind) {
    // By sha256sum.
    EXPECT_EQ(ClipIdentity::ofText("héllo\n"), "246b80456f65b3ced3696fe1");
    EXPECT_EQ(ClipIdentity::ofFiles("/a\n/b"), "ba0b9964c140aca999e2385a");
    EXPECT_EQ(ClipIdentity::ofText("file:/a"), "712113b4bc8194e61c048ec1");
    EXPECT_EQ(ClipIdentity::ofPicture(std::string_view("II*\0", 4)), "75a2a13326b2a4a0b2265dbc");
    EXPECT_NE(ClipIdentity::ofText(" a"), ClipIdentity::ofText("a"));
}

TEST(ClipboardEntry, previewsItsFirstFilledLine) {
    const auto family = std::string("👨‍👩‍👧‍👦");

    const struct {
        std::string text;
        std::string preview;
        const char* reason;
    } cases[] = {
        {" \t one \ntwo", "one", "blanks at its ends go"},
        {"\n\r\n\vtwo", "two", "empty lines are passed over"},
        {"  \ntwo", "", "a line of blanks is a line"},
        {"\n\r\u2028\u2029\u0085\v\f", "", "only line breaks"},
        {"", "", "nothing"},
        {"a\u0085b", "a", "ended by NEL"},
        {"a\u2028b", "a", "ended by a line separator"},
        {"a\u2029b", "a", "ended by a paragraph separator"},
        {"a\fb", "a", "ended by a form feed"},
        {"câ\u20ac\u2027", "câ\u20ac\u2027", "characters of the same first bytes end nothing"},
        {repeated("x", 120), repeated("x", 120), "as long as may be"},
        {repeated("x", 121), repeated("x", 120) + "…", "one too long"},
        {repeated(family, 120), repeated(family, 120), "3 kB, and no more than 120 characters"},
        {repeated(family, 500), repeated(family, 120) + "…", "cut between characters"},
        {"e" + repeated("\u0301", 5000), "e" + repeated("\u0301", 5000), "one heavy character"},
        {"  " + repeated("y", 120) + " ", repeated("y", 120), "cut after it is trimmed"},
    };

    for (const auto& [text, preview, reason] : cases)
        EXPECT_EQ(ClipboardEntry::makePreview(text), preview) << reason;
}

TEST(ClipClassifier, takesAnAddressAloneForALink) {
    const std::string address = "https://example.org/";
    const auto long2047 = address + repeated("a", 2047 - address.size());
    const auto accents = address + repeated("e\u0301", 2047 - address.size());

    const struct {
        std::string text;
        bool isLink;
        const char* reason;
    } cases[] = {
        {"https://example.org", true, "an address"},
        {"\u00a0\n http://a \t\r\n", true, "blanks around it don't count"},
        {"see https://example.org", false, "prose before it"},
        {"https://example.org is it", false, "prose behind it"},
        {"https://a\nhttps://b", false, "two lines"},
        {"https://a\u2028https://b", false, "two lines by Unicode"},
        {"HTTPS://example.org", false, "in capitals"},
        {"ftp://example.org", false, "another scheme"},
        {"http:/example.org", false, "a slash is missing"},
        {"", false, "nothing"},
        {long2047, true, "as long as may be"},
        {long2047 + "a", false, "one too long"},
        {accents, true, "counted in characters"},
        {accents + "a", false, "one character too long"},
        {address + "a" + repeated("\u0301", 40000), true, "many bytes, few characters"},
    };

    for (const auto& [text, isLink, reason] : cases) {
        const ClipText copied(text);
        EXPECT_EQ(ClipClassifier::category(ClipKind::text, copied),
                  isLink ? ClipCategory::link : ClipCategory::text)
            << reason;
        EXPECT_EQ(ClipClassifier::category(ClipKind::file, copied), ClipCategory::file);
        EXPECT_EQ(ClipClassifier::category(ClipKind::image, copied), ClipCategory::image);
    }
}

TEST(ClipboardEntry, namesNoFileByABlankLine) {
    const auto entry =
        ClipboardEntry::make({.kind = ClipKind::file, .text = ClipText("\n/a\n\n/b c\n\n")});
    EXPECT_THAT(entry.paths(), ElementsAre("/a", "/b c"));
    EXPECT_THAT(ClipboardEntry().paths(), IsEmpty());
}

TEST(ClipboardEntry, fetchesOnlyAPictureThatLiesElsewhere) {
    auto entry = ClipboardEntry::make({.kind = ClipKind::image});
    EXPECT_FALSE(entry.needsFetch()); // there is nowhere to fetch it from
    entry.syncBlob.emplace();
    EXPECT_TRUE(entry.needsFetch());
    entry.fullFile = "a-full.png";
    EXPECT_FALSE(entry.needsFetch());
    entry = ClipboardEntry::make({.kind = ClipKind::text});
    entry.syncBlob.emplace();
    EXPECT_FALSE(entry.needsFetch());
}

} // namespace
} // namespace tessarine
