#include "LauncherCore/clipboard/ClipboardJson.h"

#include "LauncherCore/clipboard/ClipFilterKeyJson.h"
#include "LauncherCore/clipboard/ClipGroupsJson.h"
#include "tests/LauncherCore/clipboard/Clippings.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::HasSubstr;

ClipboardHistory example() {
    auto text = clipping("00ff", 1700000000.25, "two\n\"lines\" é/\u0001");
    auto picture = pinned(clipping("0a0b", 2, "Image 3×4", ClipKind::image));
    picture.imageFile = "0a0b.png";
    picture.fullFile = "0a0b-full.png";
    picture.count = 7;
    picture.sourceApp = "Bild";
    picture.fromOtherDevice = true;
    picture.syncOrigin = "desk";
    picture.syncLamport = -9007199254740993;
    picture.syncBlob = {.plain = "p", .object = "o", .bytes = 5, .width = 3, .height = 4};
    picture.blobTooLarge = false;
    picture.pastedInto = {{"Mail", "Notes"}};
    auto file = clipping("0c", 3, "/a\n/b", ClipKind::file);
    file.pastedInto.emplace();
    return {{text, picture, file}};
}

constexpr std::string_view exampleDocument =
    R"({"entries":[{"id":"00ff","kind":"text","text":"two\n\"lines\" é/\u0001","preview":"two",)"
    R"("firstSeen":1700000000.25,"lastSeen":1700000000.25,"count":1,"pinned":false},)"
    R"({"id":"0a0b","kind":"image","text":"Image 3×4","preview":"Image 3×4",)"
    R"("imageFile":"0a0b.png","fullFile":"0a0b-full.png","firstSeen":2.0,"lastSeen":2.0,)"
    R"("count":7,"pinned":true,"sourceApp":"Bild","fromOtherDevice":true,"syncOrigin":"desk",)"
    R"("syncLamport":-9007199254740993,"syncBlob":{"plain":"p","object":"o","bytes":5,"width":3,)"
    R"("height":4},"blobTooLarge":false,"pastedInto":["Mail","Notes"]},)"
    R"({"id":"0c","kind":"file","text":"/a\n/b","preview":"/a","firstSeen":3.0,"lastSeen":3.0,)"
    R"("count":1,"pinned":false,"pastedInto":[]}]})";

/// The example's document with one piece of it another.
std::string with(std::string_view piece, std::string_view other) {
    std::string text(exampleDocument);
    const auto at = text.find(piece);
    EXPECT_NE(at, std::string::npos) << piece;
    return text.replace(at, piece.size(), other);
}

TEST(ClipboardJson, writesTheStoredFormByteForByte) {
    EXPECT_EQ(ClipboardJson::encoded(example()), exampleDocument);
    EXPECT_EQ(ClipboardJson::encoded({}), R"({"entries":[]})");
    const auto read = ClipboardJson::decoded(exampleDocument);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->history, example());
    EXPECT_FALSE(read->losesOld);
}

TEST(ClipboardJson, writesAnyBytesOfOthersNames) {
    auto entry = clipping("a", 1, "t\xff");
    entry.sourceApp = "\xc3(";
    entry.pastedInto = {{"\xed\xa0\x80"}};
    const auto read = ClipboardJson::decoded(ClipboardJson::encoded({{entry}}));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->history.entries.front().text.string(), "t\uFFFD");
    EXPECT_EQ(*read->history.entries.front().sourceApp, "\uFFFD(");
}

TEST(ClipboardJson, refusesAWholeDocumentForOneBadEntry) {
    const std::string documents[] = {
        "",
        "null",
        "[]",
        R"({"entries":null})",
        R"({"entries":{}})",
        R"({"entries":[7]})",
        with(R"("id":"00ff",)", ""),
        with(R"("preview":"two",)", ""),
        with(R"("id":"00ff")", R"("id":null)"),
        with(R"("id":"00ff")", R"("id":5)"),
        with(R"("kind":"text")", R"("kind":"sound")"),
        with(R"("firstSeen":2.0)", R"("firstSeen":"2")"),
        with(R"("firstSeen":2.0)", R"("firstSeen":1e999)"),
        with(R"("count":7)", R"("count":7.5)"),
        with(R"("count":7)", R"("count":9223372036854775808)"),
        with(R"("pinned":true)", R"("pinned":1)"),
        with(R"("sourceApp":"Bild")", R"("sourceApp":[])"),
        with(R"("width":3)", R"("width":"3")"),
        with(R"("width":3,)", ""),
        with(R"({"plain":"p","object":"o","bytes":5,"width":3,"height":4})", "7"),
        with(R"(["Mail","Notes"])", R"(["Mail",5])"),
        with("Bild", "\xff"),
        with(R"("pinned":false,"pastedInto":[]}]})", R"("pinned":false,"pasted)"), // torn off
        std::string(100000, '['),
    };
    for (const auto& text : documents)
        EXPECT_FALSE(ClipboardJson::decoded(text)) << text.substr(0, 200);
}

TEST(ClipboardJson, tellsWhatItWouldLoseOfANewerDocument) {
    const struct {
        std::string text;
        bool losesOld;
    } cases[] = {
        {with(R"({"entries")", R"({"schema":2,"entries")"), true},
        {with(R"("count":7)", R"("mood":{"a":[]},"count":7)"), true},
        {with(R"("width":3)", R"("depth":1,"width":3)"), true},
        {with(R"("sourceApp":"Bild")", R"("sourceApp":null)"), false},
        {with(R"("firstSeen":2.0)", R"("firstSeen":2)"), false},
    };

    for (const auto& [text, losesOld] : cases) {
        const auto read = ClipboardJson::decoded(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(read->losesOld, losesOld) << text;
        EXPECT_EQ(read->history.entries.size(), 3u);
    }
}

ClipGroups exampleGroups() {
    ClipGroups groups{ClipGroups::templates()};
    groups.upsert({.name = "Every field é",
                   .symbol = "a/b",
                   .match = {.contains = "1",
                             .firstLineEndsWith = "2",
                             .firstLineContains = "3",
                             .startsWith = "4",
                             .regex = R"(\d"5)",
                             .maxLength = -6,
                             .minLength = 7,
                             .pasted = false,
                             .filePattern = "8",
                             .fileState = ClipMatcher::FileState::named,
                             .fileNeedle = "",
                             .kind = ClipKind::image}});
    return groups;
}

TEST(ClipGroupsJson, readsBackEveryFieldAndWritesThemForPeople) {
    const auto text = ClipGroupsJson::encoded(exampleGroups());
    const auto read = ClipGroupsJson::decoded(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->groups, exampleGroups());
    EXPECT_FALSE(read->losesOld);
    EXPECT_THAT(text, HasSubstr(R"("symbol": "a/b")"));
    const ClipGroups files{{{.name = "F", .symbol = "doc", .match = {.kind = ClipKind::file}}}};
    EXPECT_EQ(ClipGroupsJson::encoded(files), R"({
  "groups": [
    {
      "match": {
        "kind": "file"
      },
      "name": "F",
      "symbol": "doc"
    }
  ]
}
)");
}

TEST(ClipGroupsJson, refusesWhatIsNoRuleAndTellsWhatIsNew) {
    const auto document = [](const std::string& match) {
        return R"({"groups":[{"name":"N","symbol":"s","match":)" + match + "}]}";
    };
    for (const auto* match : {R"({"regex":5})",
                              R"({"maxLength":"9"})",
                              R"({"maxLength":1.5})",
                              R"({"fileState":"burnt"})",
                              R"({"kind":"sound"})",
                              R"({"pasted":"yes"})",
                              "[]",
                              "null"})
        EXPECT_FALSE(ClipGroupsJson::decoded(document(match))) << match;
    for (const auto* text : {"", "{}", R"({"groups":{}})", R"({"groups":[{"name":"N"}]})"})
        EXPECT_FALSE(ClipGroupsJson::decoded(text)) << text;

    const auto plain = ClipGroupsJson::decoded(document(R"({"contains":"a","regex":null})"));
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->groups.groups.front().match, ClipMatcher{.contains = "a"});
    EXPECT_FALSE(plain->losesOld);
    EXPECT_TRUE(ClipGroupsJson::decoded(document(R"({"mood":1})"))->losesOld);
    EXPECT_TRUE(ClipGroupsJson::decoded(R"({"groups":[],"order":[]})")->losesOld);
}

TEST(ClipFilterKeyJson, hasOneKeyWithAnInnerOne) {
    const struct {
        ClipFilterKey key;
        const char* text;
    } cases[] = {
        {ClipFilterKey::builtin(ClipCategory::link), R"({"builtin":{"_0":"link"}})"},
        {ClipFilterKey::group("Receipts"), R"({"group":{"_0":"Receipts"}})"},
        {ClipFilterKey::group(""), R"({"group":{"_0":""}})"},
    };

    for (const auto& [key, text] : cases) {
        EXPECT_EQ(ClipFilterKeyJson::encoded(key), text);
        EXPECT_EQ(ClipFilterKeyJson::decoded(text).key, key);
    }
    for (const auto* text : {"{}", R"({"builtin":{"_0":"link"},"group":{"_0":"a"}})"}) {
        EXPECT_EQ(ClipFilterKeyJson::decoded(text).key, std::nullopt);
        EXPECT_EQ(ClipFilterKeyJson::decoded(text).problem,
                  "Invalid number of keys found, expected one.");
    }
    for (const auto* text : {"",
                             "7",
                             R"({"other":{"_0":"link"}})",
                             R"({"builtin":"link"})",
                             R"({"builtin":{"_0":"sound"}})",
                             R"({"group":{"_0":7}})",
                             R"({"group":{}})"}) {
        EXPECT_EQ(ClipFilterKeyJson::decoded(text).key, std::nullopt) << text;
        EXPECT_NE(ClipFilterKeyJson::decoded(text).problem, "") << text;
    }
}

} // namespace
} // namespace tessarine
