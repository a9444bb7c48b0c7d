#include "launcherapp/panel/view/modes/RenderRequest.h"

#include "launcherapp/panel/view/modes/ShortcutSelftest.h"
#include "launcherapp/shell/CommandLine.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

ReadRequest read(std::vector<std::string> words) {
    return readRenderRequest(CommandLine(std::move(words)));
}

TEST(RenderRequest, readsItsQualifiers) {
    EXPECT_EQ(read({"--render", "x.png"}).request->query, "s");
    const auto request = *read({"--render",
                                "x.png",
                                "--query",
                                "mail",
                                "--skin",
                                "rose",
                                "--select",
                                "3",
                                "--footer",
                                "hints",
                                "--mark",
                                "--actions",
                                "--settle",
                                "0.5",
                                "--render-scale",
                                "1.5"})
                              .request;
    EXPECT_EQ(request.query, "mail");
    EXPECT_EQ(request.skin, AppearancePreset::rose);
    EXPECT_EQ(request.selected, 2u); // people count from 1
    EXPECT_EQ(request.footer, Footer::FooterState::hints);
    EXPECT_TRUE(request.hasMark);
    EXPECT_EQ(request.menu, RenderRequest::Menu::actions);
    EXPECT_EQ(request.settle, Seconds(0.5));
    EXPECT_EQ(request.scale, 1.5);
    const auto clips =
        *read({"--clip-filter", "Links", "--clip-rows", "4", "--preview-placement", "below"})
             .request;
    EXPECT_EQ(clips.mode, RenderRequest::Mode::clipboard);
    EXPECT_EQ(clips.query, ""); // the whole list, not what the letter "s" finds in it
    EXPECT_EQ(clips.clipRows, 4);
    EXPECT_EQ(clips.preview, ClipPreviewPlacement::below);
    EXPECT_EQ(read({"--clip", "--query", "pier"}).request->query, "pier");
}

TEST(RenderRequest, saysWhatAValueCanBe) {
    const struct {
        std::vector<std::string> words;
        const char* problem;
    } cases[] = {
        {{"--preview-placement", "top"}, "--preview-placement: expected one of right, left, below"},
        {{"--footer", "up"}, "--footer: expected one of collapsed, hints"},
        {{"--skin", "plaid"}, "--skin: expected one of ink, violet, "},
        {{"--clip-rows", "none"}, "--clip-rows: expected a number from 1 to 60"},
        {{"--select", "0"}, "--select: expected a number from 1 to 60"},
        {{"--select", "3rd"}, "--select: expected a number from 1 to 60"},
        {{"--settle", "nan"}, "--settle: expected a number from 0 to 60"},
        {{"--render-scale", "90"}, "--render-scale: expected a number from 0.5 to 4"},
    };

    for (const auto& [words, problem] : cases) {
        const auto read = readRenderRequest(CommandLine(words));
        EXPECT_FALSE(read.request) << problem;
        EXPECT_THAT(read.problem, testing::StartsWith(problem));
    }
}

TEST(ShortcutSelftest, saysWhatWasProved) {
    const auto result = shortcutSelftest();
    EXPECT_EQ(result.verdict, SelftestResult::Verdict::proved);
    EXPECT_EQ(result.report,
              "selftest-shortcut: 10 checks, command-comma matches through caps lock and 7 decoys "
              "are rejected");
}

} // namespace
} // namespace tessarine
