#include "launcherapp/shell/modes/ClipboardModes.h"

#include "launcherapp/clipboard/groups/ClipGroupStore.h"
#include "tests/launcherapp/clipboard/ClipboardFixture.h"
#include "tests/launcherapp/shell/modes/ModeRun.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ClipboardModesTest : public testing::Test {
protected:
    /// A run of the program with these words.
    ModeRun& run(std::vector<std::string> words) {
        mode.emplace(services, *model, std::move(words), nullptr, &offered);
        Modes::schedule(mode->context);
        return *mode;
    }

    void pass(Seconds time) { clipboard.time.advance(time); }

    ClipboardFixture clipboard;
    FakeServices& services = clipboard.services;
    ClipGroupStore groups{{.queue = services.platform.queue,
                           .work = services.platform.work,
                           .files = services.platform.files,
                           .prefs = services.prefs,
                           .diagnostics = services.diagnostics,
                           .runtime = clipboard.runtime},
                          "/support/clip-groups.json"};
    ClipboardModeServices offered{.board = clipboard.board,
                                  .store = clipboard.store,
                                  .groups = groups,
                                  .runtime = clipboard.runtime};
    std::unique_ptr<SearchModel> model = services.makeModel();
    std::optional<ModeRun> mode;
};

TEST_F(ClipboardModesTest, theTypesOfEachCopyAreToldAndNoSecretIsRead) {
    const struct {
        FakePasteboard::Items items;
        std::vector<std::string> told;
        int reads;
    } cases[] = {
        {{{"UTF8_STRING", "the tide"}},
         {"change 2 types=[UTF8_STRING] REMOTE=false", "the tide"},
         1},
        {{{"UTF8_STRING", "hunter2"}, {"x-kde-passwordManagerHint", "secret"}},
         {"change 3 types=[UTF8_STRING, x-kde-passwordManagerHint] REMOTE=false",
          "<concealed, not read>"},
         0},
        {{{"image/png", "…"}, {"com.apple.is-remote-clipboard", ""}},
         {"change 4 types=[image/png, com.apple.is-remote-clipboard] REMOTE=true", "<not text>"},
         0},
        {{{"UTF8_STRING", std::string(70000, 'x')}},
         {"change 5 types=[UTF8_STRING] REMOTE=false", "<more than 65536 bytes>"},
         1},
        {{{"UTF8_STRING", "clear\x1b[2J\nit"}}, // which a terminal would do
         {"change 6 types=[UTF8_STRING] REMOTE=false", R"(clear\x1b[2J\nit)"},
         1},
    };

    auto& watch = run({"--pasteboard-types"});
    pass(Seconds{1});
    for (const auto& [items, told, reads] : cases) {
        watch.lines.clear();
        clipboard.board.reads.clear();
        clipboard.board.copy(items);
        pass(Seconds{1});
        EXPECT_EQ(watch.lines, told);
        EXPECT_EQ(clipboard.board.totalReads(), reads);
    }
    EXPECT_EQ(watch.status, std::nullopt);
    pass(ClipboardModes::watched);
    EXPECT_EQ(watch.lines.back(), "done");
    EXPECT_EQ(watch.status, 0);
    const auto lines = watch.lines.size();
    clipboard.copyText("after its time");
    EXPECT_THAT(watch.lines, SizeIs(lines));
}

TEST_F(ClipboardModesTest, whatHasNoClipboardIsNotMeasured) {
    clipboard.board.supported = Ability::missing("there is no X display");
    const auto& watch = run({"--pasteboard-types"});
    pass(Seconds{1});
    EXPECT_THAT(watch.lines, ElementsAre("pasteboard-types: NOT MEASURED, there is no X display"));
    EXPECT_EQ(watch.status, 2);
}

TEST_F(ClipboardModesTest, groupsAreAnsweredFromTheHistoryOrNotAtAll) {
    auto& early = run({"--clip-groups", "list"});
    pass(Seconds{20}); // nothing loads it
    ASSERT_THAT(early.lines, SizeIs(1));
    EXPECT_THAT(early.lines[0], HasSubstr(R"("reason": "not_loaded")"));
    EXPECT_EQ(early.status, 1);

    clipboard.putOnDisk({ClipboardFixture::textEntry("order no. 12", clipboard.now())});
    clipboard.store.load([] {});
    pass(Seconds{1});
    auto& list = run({"--clip-groups", "list"});
    pass(Seconds{1});
    ASSERT_THAT(list.lines, SizeIs(1));
    EXPECT_THAT(list.lines[0], HasSubstr(R"("history_size": 1)"));
    EXPECT_EQ(list.status, 0);

    auto& verbless = run({"--clip-groups", "--json", "{}"});
    pass(Seconds{1});
    EXPECT_THAT(verbless.lines, IsEmpty());
    EXPECT_THAT(verbless.errors, HasSubstr("--clip-groups"));
    EXPECT_EQ(verbless.status, 2);
}

} // namespace
} // namespace tessarine
