#include "launcherapp/clipboard/ClipSkips.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using Reason = ClipSkip::Reason;
using Texts = std::vector<std::string>;

constexpr auto remote = "com.apple.is-remote-clipboard";
constexpr auto text = "UTF8_STRING";
constexpr auto files = "text/uri-list";
constexpr auto png = "image/png";

TEST(ClipSkips, aRemoteCopyIsJudgedByItsTypesAndTheSettings) {
    const struct {
        const char* reason;
        Texts types;
        bool ignoresText;
        bool ignoresFiles;
        bool ignoresImages;
        std::optional<std::string> kind;
    } cases[] = {
        {"at the defaults a picture never travels", {remote, png}, false, true, true, "image"},
        {"and text does", {remote, text}, false, true, true, std::nullopt},
        {"the setting off lets it through", {remote, png}, false, true, false, std::nullopt},
        {"the setting for all drops it too", {remote, png}, true, true, false, "image"},
        {"files are files though text rides along",
         {remote, text, files},
         false,
         true,
         false,
         "file"},
        {"and ruled by their setting alone",
         {remote, text, files},
         true,
         false,
         true,
         std::nullopt},
        {"text that has a picture is text", {remote, png, text}, false, true, true, std::nullopt},
        {"text", {remote, text}, true, false, false, "text"},
        {"no kind that is kept", {remote, "text/html"}, true, true, true, std::nullopt},
        {"a local copy", {text, png, files}, true, true, true, std::nullopt},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        const auto skip = ClipSkips::beforeReading(each.types,
                                                   {.ignoresRemoteText = each.ignoresText,
                                                    .ignoresRemoteFiles = each.ignoresFiles,
                                                    .ignoresRemoteImages = each.ignoresImages});
        auto expected = each.kind;
        if (expected)
            expected = "clipboard: skipped a remote " + *expected + " without fetching it";
        EXPECT_EQ(skip ? std::optional(skip->line) : std::nullopt, expected);
        EXPECT_TRUE(!skip || skip->reason == Reason::remote);
    }
}

TEST(ClipSkips, theFirstReasonNamesTheSkip) {
    ClipSkips::Circumstances all{.ignoredApps = {"bank"}, .frontApp = "bank", .isQuillet = true};
    const auto reason = [&](const Texts& types) -> std::optional<Reason> {
        const auto skip = ClipSkips::beforeReading(types, all);
        return skip ? std::optional(skip->reason) : std::nullopt;
    };
    EXPECT_EQ(reason({text, remote, files, "org.nspasteboard.TransientType"}), Reason::concealed);
    EXPECT_EQ(reason({text, remote, files}), Reason::remote);
    EXPECT_EQ(reason({text, remote}), std::nullopt); // no application here copied it
    EXPECT_EQ(reason({text}), Reason::ignoredApp);
    all.ignoredApps = {"banks"};
    EXPECT_EQ(reason({text}), Reason::quillet);
    all.isQuillet = false; // its switch is off
    EXPECT_EQ(reason({text}), std::nullopt);
}

TEST(ClipSkips, aTextOfExactlyTheLimitIsKept) {
    EXPECT_FALSE(ClipSkips::tooManyCharacters(5, 5));
    EXPECT_EQ(ClipSkips::tooManyCharacters(6, 5)->line,
              "clipboard: skipped a 6-character copy, over the 5 limit");
    EXPECT_FALSE(ClipSkips::tooManyCharacters(1000000, 0));
    EXPECT_EQ(ClipSkips::textLimitBytes(5), 80U);
    for (const auto limit : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1} << 62})
        EXPECT_EQ(ClipSkips::textLimitBytes(limit), std::size_t{256} << 20);
}

} // namespace
} // namespace tessarine
