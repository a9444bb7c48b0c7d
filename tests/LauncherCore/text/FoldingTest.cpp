#include "LauncherCore/text/Folding.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(Folding, foldsWidthThenMarksThenCase) {
    const struct {
        std::string text;
        std::string folded;
        std::string keepingCase;
        const char* reason;
    } cases[] = {
        {"Plain ASCII 1", "plain ascii 1", "Plain ASCII 1", "ASCII"},
        {"Café MÜNCHENER", "cafe munchener", "Cafe MUNCHENER", "composed accents"},
        {"Cafe\u0301", "cafe", "Cafe", "a combining accent"},
        {"Straße", "strasse", "Straße", "full case folding"},
        {"ΣΊΣΥΦΟΣ", "σισυφοσ", "ΣΙΣΥΦΟΣ", "every sigma is one, the accent is gone"},
        {"İstanbul", "istanbul", "Istanbul", "the dot above is a mark, and no locale counts"},
        {"ＡＢＣ１２３！", "abc123!", "ABC123!", "full-width forms"},
        {"ｶﾞｲﾄﾞ", "カイト", "カイト", "half-width kana with their narrow marks"},
        {"ガイド", "カイト", "カイト", "voiced kana decompose"},
        {"a\u3000b", "a b", "a b", "the ideographic space"},
        {"Ελληνικά", "ελληνικα", "Ελληνικα", "Greek tonos"},
        {"한글", "한글", "한글", "Hangul is composed again"},
        {"\u1112\u1161\u11ab", "한", "한", "and composed where it wasn't"},
        {"\u05e9\u05b8\u05dc\u05d5\u05b9\u05dd", "שלום", "שלום", "Hebrew points"},
        {"ﬁx", "fix", "ﬁx", "a ligature folds with case, not with width"},
        {"", "", "", "nothing"},
        {"a\xff"
         "B",
         "a\ufffd"
         "b",
         "a\ufffd"
         "B",
         "bytes that are no UTF-8"},
    };

    for (const auto& [text, folded, keepingCase, reason] : cases) {
        SCOPED_TRACE(reason);
        EXPECT_EQ(Folding::fold(text), folded);
        EXPECT_EQ(Folding::foldKeepingCase(text), keepingCase);
        EXPECT_EQ(Folding::foldCase(Folding::foldKeepingCase(text)), Folding::fold(text));
        EXPECT_EQ(Folding::fold(folded), folded) << "a fold of a fold is the same";
    }
}

TEST(Folding, everythingFoldedMeetsItsOtherForms) {
    // Not everything meets: a fold that matched all would pass the table above's spirit too.
    EXPECT_NE(Folding::fold("cafe"), Folding::fold("cave"));
    EXPECT_NE(Folding::fold("ö"), Folding::fold("ø"));
}

TEST(Folding, dropsControlAndFormatCharactersAlone) {
    EXPECT_EQ(Folding::withoutControlAndFormat("a\u200d\u00ad\u202eb\tc\x7f\u0085"), "abc");
    EXPECT_EQ(Folding::withoutControlAndFormat("e\u0301 \u3000"), "e\u0301 \u3000");
    EXPECT_EQ(Folding::withoutControlAndFormat("\x80x"), "\ufffdx");
}

TEST(Folding, comparesIgnoringCaseAlone) {
    EXPECT_TRUE(Folding::equalIgnoringCase("STRASSE", "straße"));
    EXPECT_TRUE(Folding::equalIgnoringCase("Éa", "éA"));
    EXPECT_FALSE(Folding::equalIgnoringCase("e", "é"));
    EXPECT_FALSE(Folding::equalIgnoringCase("abc", "ab"));
}

TEST(Folding, trimsEveryWhiteSpaceOfUnicode) {
    EXPECT_EQ(Folding::trimmed(" \t\r\n\u3000\u00a0a b\u2028 "), "a b");
    EXPECT_EQ(Folding::trimmed(" \u2003 "), "");
    EXPECT_EQ(Folding::trimmed("\xff a"), "\xff a");
    EXPECT_EQ(Folding::trimmed("\u200b"), "\u200b"); // a zero-width space is no white space
}

TEST(Folding, lowersAndRepairs) {
    EXPECT_EQ(Folding::lowercase("ÀΣ ΑΣ"), "àς ας"); // a sigma that ends a word
    EXPECT_EQ(Folding::repairedUtf8("a\xc3"), "a\ufffd");
    EXPECT_EQ(Folding::repairedUtf8("ok é"), "ok é");
    EXPECT_FALSE(Folding::isUtf8("\xed\xa0\x80")); // a surrogate
    EXPECT_FALSE(Folding::isUtf8("\xc0\x80"));     // an overlong NUL
}

} // namespace
} // namespace tessarine
