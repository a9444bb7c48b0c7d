#include "LauncherCore/clipboard/ClipGroupsRuntime.h"

#include "tests/LauncherCore/clipboard/Clippings.h"

#include <gmock/gmock.h>

#include <functional>
#include <thread>
#include <utility>

namespace tessarine {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

const std::string opener = "Read and execute \"/h/a.md\"";

TEST(ClipGroupsRuntime, seesAClaimOnceTheOldAnswerHasAged) {
    TaughtGroups groups;
    groups.runtime.setCurrent({ClipGroups::templates()});
    groups.files["/h/a.md"] = "# Task\n";
    const auto entry = clipping("a", 1, opener);
    EXPECT_EQ(groups.claims(entry), "Handoffs not launched");

    groups.files["/h/a.md"] = "EXECUTED by a session\n";
    groups.now += 29.9;
    EXPECT_EQ(groups.claims(entry), "Handoffs not launched");
    groups.now += 0.1;
    EXPECT_EQ(groups.claims(entry), "Claude handoffs");

    groups.files.clear();
    groups.now += 30;
    EXPECT_EQ(groups.claims(entry), "Handoffs whose file is gone");
    EXPECT_EQ(groups.runtime.symbol(entry), "questionmark.folder");
}

TEST(ClipGroupsRuntime, readsAFileOncePerNeedleWhileTheFactIsFresh) {
    TaughtGroups groups;
    groups.files["/f"] = "claim";
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(groups.runtime.fileFact("/f", "claim"), (ClipFileFact{true, true}));
        EXPECT_EQ(groups.runtime.fileFact("/f", "other"), (ClipFileFact{true, false}));
        EXPECT_EQ(groups.runtime.fileFact("/f", std::nullopt), (ClipFileFact{true, false}));
        EXPECT_EQ(groups.runtime.fileFact("/g", "claim"), ClipFileFact());
        groups.now += 5;
    }
    EXPECT_THAT(groups.filesRead, SizeIs(4));
    groups.runtime.forgetAll();
    groups.runtime.fileFact("/f", "claim");
    EXPECT_THAT(groups.filesRead, SizeIs(5));
    groups.now -= 1; // what was learnt in the future may be wrong for long
    groups.runtime.fileFact("/f", "claim");
    EXPECT_THAT(groups.filesRead, SizeIs(6));
}

TEST(ClipGroupsRuntime, looksNoFurtherThanTheTopOfAFile) {
    TaughtGroups groups;
    groups.files["/f"] = std::string(4096 - 5, '\xff') + "claim";
    groups.files["/g"] = std::string(4096 - 4, 'x') + "claim";
    groups.files["/h"] = "CLAIM";
    EXPECT_TRUE(groups.runtime.fileFact("/f", "claim")->hasNeedle);
    EXPECT_FALSE(groups.runtime.fileFact("/g", "claim")->hasNeedle);
    EXPECT_FALSE(groups.runtime.fileFact("/h", "claim")->hasNeedle);
}

TEST(ClipGroupsRuntime, keepsAnAnswerForEverWhereNoRuleReadsAFile) {
    TaughtGroups groups;
    groups.runtime.setCurrent({{{.name = "Unpasted", .match = {.pasted = false}}}});
    auto entry = clipping("a", 1, opener);
    EXPECT_EQ(groups.claims(entry), "Unpasted");
    groups.now += 1e9;
    entry.pastedInto = {{"Mail"}};
    EXPECT_EQ(groups.claims(entry), "Unpasted");
    groups.runtime.forget("b");
    EXPECT_EQ(groups.claims(entry), "Unpasted");
    groups.runtime.forget("a");
    EXPECT_EQ(groups.claims(entry), "");
    EXPECT_THAT(groups.filesRead, IsEmpty());
}

TEST(ClipGroupsRuntime, callsNothingUnpastedThatIsOlderThanTheMarks) {
    TaughtGroups groups;
    groups.runtime.setCurrent({{{.name = "Unpasted", .match = {.pasted = false}}}});
    const auto entry = clipping("a", 100);
    EXPECT_EQ(groups.claims(entry), "Unpasted");
    groups.runtime.setPasteTrackingSince(101);
    EXPECT_EQ(groups.claims(entry), "");
    groups.runtime.setPasteTrackingSince(100);
    EXPECT_EQ(groups.claims(entry), "Unpasted");
}

TEST(ClipGroupsRuntime, remembersNothingOfAFileThatIsNotKnownYet) {
    TaughtGroups groups;
    groups.runtime.setCurrent({ClipGroups::templates()});
    const auto entry = clipping("a", 1, opener);
    groups.isHanging = true;
    EXPECT_EQ(groups.claims(entry), "Claude handoffs"); // it asks no file
    EXPECT_EQ(groups.runtime.fileFact("/h/a.md", std::nullopt), std::nullopt);

    groups.isHanging = false;
    groups.isOld = true;
    groups.files["/h/a.md"] = "# Task\n";
    EXPECT_EQ(groups.claims(entry), "Handoffs not launched");
    groups.isOld = false;
    groups.files["/h/a.md"] = "EXECUTED\n";
    EXPECT_EQ(groups.claims(entry), "Claude handoffs");
    groups.files.clear();
    EXPECT_EQ(groups.claims(entry), "Claude handoffs"); // now it is known, for a while
}

TEST(ClipGroupsRuntime, claimsAnewAfterAPasteAndUnderOtherGroups) {
    TaughtGroups groups;
    groups.runtime.setCurrent({{{.name = "Unpasted", .match = {.pasted = false}}}});
    ClipboardHistory history{{clipping("a", 1, "https://a")}};
    EXPECT_EQ(groups.claims(history.entries.front()), "Unpasted");
    history.notePaste("a", "Mail", groups.runtime);
    EXPECT_EQ(groups.runtime.filterKey(history.entries.front()),
              ClipFilterKey::builtin(ClipCategory::link));
    EXPECT_EQ(groups.runtime.symbol(history.entries.front()), "link");

    groups.runtime.setCurrent({{{.name = "Web", .symbol = "globe", .match = {.contains = "a"}}}});
    EXPECT_EQ(groups.runtime.filterKey(history.entries.front()), ClipFilterKey::group("Web"));
    EXPECT_EQ(groups.runtime.symbol(history.entries.front()), "globe");
}

TEST(ClipGroupsRuntime, doesNotRememberWhatWasForgottenOrReplacedMeanwhile) {
    // The reader of files stands for whatever happens while a rule is asked.
    std::function<void()> meanwhile;
    ClipGroupsRuntime runtime([] { return 0.0; },
                              [&](const std::string&) {
                                  if (meanwhile)
                                      std::exchange(meanwhile, {})();
                                  return ClipFileBeginning{.bytes = ""};
                              });
    const auto entry = clipping("a", 1, opener);
    const ClipGroups handoffs{ClipGroups::templates()};
    runtime.setCurrent(handoffs);

    meanwhile = [&] { runtime.setCurrent({{{.name = "All", .match = {.minLength = 0}}}}); };
    EXPECT_EQ(runtime.group(entry)->name, "Handoffs not launched");
    EXPECT_EQ(runtime.group(entry)->name, "All");

    runtime.setCurrent({{{.name = "Unpasted",
                          .match = {.pasted = false,
                                    .filePattern = std::string(ClipGroups::handoffPath),
                                    .fileState = ClipMatcher::FileState::contains,
                                    .fileNeedle = ""}}}});
    runtime.forgetAll();
    meanwhile = [&] { runtime.forget("a"); };
    EXPECT_EQ(runtime.group(entry)->name, "Unpasted");
    auto pasted = entry;
    pasted.pastedInto = {{"Mail"}};
    EXPECT_EQ(runtime.group(pasted), nullptr);
}

// The thread sanitizer is the judge of what happens meanwhile.
TEST(ClipGroupsRuntime, servesManyThreadsAtOnce) {
    ClipGroupsRuntime runtime([] { return 0.0; },
                              [](const std::string&) { return ClipFileBeginning{.bytes = ""}; });
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 500; ++i) {
                const auto id = std::to_string(i % 50);
                runtime.group(clipping(id, 1, opener));
                if (thread == 0 && i % 50 == 0)
                    runtime.setCurrent(i % 100 == 0 ? ClipGroups{ClipGroups::templates()}
                                                    : ClipGroups());
                else if (thread == 1)
                    runtime.forget(id);
            }
        });
    threads.clear();
    // Whatever was remembered on the way is of the groups that are in force in the end.
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(runtime.group(clipping(std::to_string(i), 1, opener)), nullptr);
}

} // namespace
} // namespace tessarine
