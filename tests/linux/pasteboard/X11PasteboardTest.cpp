#include "launcherapp/platform/linux/pasteboard/NoPasteboard.h"
#include "tests/linux/BareDisplay.h"
#include "tests/linux/pasteboard/ForeignOwner.h"
#include "tests/linux/pasteboard/PasteboardFixture.h"

#include <csignal>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class X11PasteboardTest : public PasteboardFixture {};

TEST_F(X11PasteboardTest, countsEveryChangeOfTheClipboardAlone) {
    ForeignClient other;
    auto count = board.changeCount();
    const auto grows = [&] {
        const bool hasGrown = reaches(count + 1) && offered();
        return hasGrown && board.changeCount() == ++count;
    };
    other.own();
    EXPECT_TRUE(spinUntil([&] { return board.changeCount() == count + 1; }));
    ++count;
    other.own("PRIMARY");
    other.own("SECONDARY");
    other.own(); // again, by the same window
    EXPECT_TRUE(spinUntil([&] { return board.changeCount() > count; }));
    EXPECT_EQ(board.changeCount(), ++count);
    other.letGo();
    EXPECT_TRUE(grows());
    EXPECT_THAT(offered()->types, IsEmpty());
    EXPECT_EQ(put({item("a/b", "ours")}), ++count);
    EXPECT_EQ(put({item("a/b", "ours again")}), ++count);
    EXPECT_EQ(board.changeCount(), count);
}

TEST_F(X11PasteboardTest, tellsWhenTheOwnerIsGoneAndNobodyElseCame) {
    std::vector<std::uint64_t> gone;
    const auto subscription =
        board.onAbandoned([&](std::uint64_t count) { gone.push_back(count); });
    auto owner = std::make_unique<ForeignClient>();
    const auto before = board.changeCount();
    owner->own();
    ASSERT_TRUE(reaches(before + 1));
    owner.reset();
    ASSERT_TRUE(spinUntil([&] { return !gone.empty(); }));
    EXPECT_THAT(gone, ElementsAre(before + 1));
    // One that was replaced leaves nothing behind, what is ours is not abandoned, nor what a
    // program empties that goes on.
    ForeignClient next;
    next.own();
    next.letGo();
    {
        ForeignClient replaced;
        replaced.own();
        next.own();
    }
    put({item("a/b", "ours")});
    next.letGo();
    offered();
    spinFor(20);
    EXPECT_THAT(gone, ElementsAre(before + 1));
}

TEST_F(X11PasteboardTest, agreesWithTheDisplayOnWhoWasLast) {
    writeAgainst([](const std::atomic<bool>& isOver) {
        ForeignClient other;
        while (!isOver)
            other.own();
        // It stays to be asked.
        while (const auto request = other.next<xcb_selection_request_event_t>(
                   XCB_SELECTION_REQUEST, std::chrono::milliseconds(1))) {
        }
    });
    agreesAtTheEnd(pasteElsewhere);
}

TEST_F(X11PasteboardTest, sleepsWhileNothingHappens) {
    sleepsThrough([] {});
}

TEST(X11PasteboardDisplay, aDisplayThatGoesAwayEndsEverything) {
    QtMainQueue queue;
    BareDisplay bare;
    ASSERT_TRUE(bare.answers);
    X11Pasteboard board(queue);
    EXPECT_TRUE(board.ability().available);
    const ForeignOwner silent([](auto&, auto&) {});
    std::vector<std::string> told;
    board.offer([&](const auto& offer) { told.emplace_back(offer ? "offer" : "nothing"); });
    ASSERT_TRUE(spinUntil([&] { return board.changeCount() > 0; }));
    board.read(board.changeCount(), "a/b", 10, [&](const auto& reading) {
        told.push_back(reading.problem);
    });
    bare.stop();
    ASSERT_TRUE(spinUntil([&] { return told.size() == 2; }));
    EXPECT_EQ(board.ability(), Ability::missing("the display is gone"));
    board.offer([&](const auto& offer) { told.emplace_back(offer ? "offer" : "nothing"); });
    ASSERT_TRUE(spinUntil([&] { return told.size() == 3; }));
    EXPECT_EQ(told.back(), "nothing");
    const auto count = board.changeCount();
    EXPECT_EQ(board.write({}), count);
}

TEST(X11PasteboardDisplay, aDisplayThatStandsStillHoldsNobodyUp) {
    QtMainQueue queue;
    BareDisplay bare;
    ASSERT_TRUE(bare.answers);
    auto board = std::make_unique<X11Pasteboard>(queue);
    bool isTold = false;
    board->offer([&](const auto&) { isTold = true; });
    ASSERT_TRUE(spinUntil([&] { return isTold; }));
    ::kill(static_cast<pid_t>(bare.server.processId()), SIGSTOP);
    const auto begun = queue.uptime();
    board->write({.items = {{"a/new", std::make_shared<const std::string>("x")}}});
    board->offer([](const auto&) { FAIL() << "it is destroyed"; });
    spinFor(50); // the thread waits for the display now
    board.reset();
    EXPECT_LT((queue.uptime() - begun).count(), 2);
    ::kill(static_cast<pid_t>(bare.server.processId()), SIGCONT);
}

TEST(NoPasteboard, endsEveryCallWithItsReason) {
    QtMainQueue queue;
    NoPasteboard board(queue, "there is no display");
    std::vector<std::string> told;
    board.offer([&](const auto& offer) { told.emplace_back(offer ? "offer" : "nothing"); });
    board.read(1, "a/b", 10, [&](const auto& reading) { told.push_back(reading.problem); });
    EXPECT_THAT(told, IsEmpty());
    ASSERT_TRUE(spinUntil([&] { return told.size() == 2; }));
    EXPECT_THAT(told, ElementsAre("nothing", "there is no display"));
    EXPECT_EQ(board.write({}), board.changeCount());
}

} // namespace
} // namespace tessarine
