#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"
#include "tests/linux/pasteboard/BoardFixture.h"
#include "tests/wayland/standin/StandInClipboard.h"

#include <algorithm>
#include <future>
#include <unistd.h>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// What the pasteboard connects to has to be there before it.
struct StandIn {
    StandInCompositor compositor;
    StandInClipboard clipboard{compositor};
};

/// A clipboard that is reached by ext-data-control alone, and a seat that goes and comes.
class ExtDataControl : public StandIn, public BoardFixture<WaylandPasteboard> {
protected:
    static void writeText(const std::string&, FileDescriptor into) {
        (void)::write(into.number(), "text", 4);
    }

    void copyElsewhere(const std::vector<std::string>& types,
                       StandInClipboard::Answer answer = writeText) {
        const auto before = board.changeCount();
        clipboard.copy(types, std::move(answer));
        ASSERT_TRUE(reaches(before + 1));
    }

    /// To the end.
    std::string pasteElsewhere(const std::string& type) {
        const auto pipe = clipboard.paste(type);
        std::string all;
        char bytes[256];
        for (ssize_t count = 1; count > 0; all.append(bytes, static_cast<std::size_t>(count)))
            count = std::max<ssize_t>(::read(pipe.number(), bytes, sizeof bytes), 0);
        return all;
    }

    bool becomesAble(bool isAble) {
        return spinUntil([&] { return board.ability().available == isAble; });
    }

    bool hears(const std::string& what) {
        return spinUntil([&] { return std::ranges::count(compositor.heard(), what) > 0; });
    }

    /// All that works with a clipboard does.
    void expectToGoOn() {
        EXPECT_EQ(board.ability(), Ability());
        copyElsewhere({"text/plain"});
        EXPECT_THAT(offered()->types, ElementsAre("text/plain"));
        EXPECT_EQ(read("text/plain").bytes, "text");
        put({item("a/b", "ours")});
        EXPECT_THAT(clipboard.types(), ElementsAre("a/b"));
        EXPECT_EQ(pasteElsewhere("a/b"), "ours");
    }
};

TEST_F(ExtDataControl, knowsTheTypesBeforeItAsksForAnyContent) {
    copyElsewhere({"text/plain", "x-kde-passwordManagerHint"});
    EXPECT_THAT(offered()->types, ElementsAre("text/plain", "x-kde-passwordManagerHint"));
    copyElsewhere({"text/plain", "text/html"});
    EXPECT_THAT(offered()->types, ElementsAre("text/plain", "text/html"));
    put({item("a/b", "ours")}); // by now it has heard all that was asked before
    EXPECT_THAT(compositor.heard(), Not(Contains(StartsWith("want"))));

    copyElsewhere({"text/plain", "text/html"});
    EXPECT_EQ(read("text/html").bytes, "text");
    EXPECT_THAT(compositor.heard(), Contains("want text/html"));
    EXPECT_THAT(compositor.heard(), Not(Contains("want text/plain")));
}

TEST_F(ExtDataControl, servesWhatItPutsThereUntilSomethingElseIs) {
    auto one = item("a/b", "one");
    const std::weak_ptr<const std::string> bytes = one.bytes;
    const auto count = put({std::move(one), item("x-test/empty", "")});
    EXPECT_THAT(clipboard.types(), ElementsAre("a/b", "x-test/empty"));
    EXPECT_EQ(pasteElsewhere("a/b"), "one");
    EXPECT_EQ(pasteElsewhere("x-test/empty"), "");
    EXPECT_EQ(pasteElsewhere("c/d"), "");
    EXPECT_EQ(board.changeCount(), count);
    copyElsewhere({"text/plain"});
    EXPECT_TRUE(spinUntil([&] { return bytes.expired(); }));
    EXPECT_TRUE(hears("drop claim"));
    copyElsewhere({});
    EXPECT_THAT(offered()->types, IsEmpty());
}

TEST_F(ExtDataControl, anOwnerThatNeverWritesHoldsNothingUp) {
    std::vector<FileDescriptor> kept; // on the compositor's thread
    copyElsewhere({"a/b"}, [&](auto&, FileDescriptor into) { kept.push_back(std::move(into)); });
    const auto reading = read("a/b");
    EXPECT_EQ(reading.outcome, Outcome::failed);
    EXPECT_THAT(reading.problem, HasSubstr("in time"));
    expectToGoOn();
}

TEST_F(ExtDataControl, aSeatThatGoesTakesItsClipboardAlongAndOneThatComesHasItsOwn) {
    int changes = 0;
    const auto subscription = board.onAbilityChanged([&] { ++changes; });
    auto ours = item("a/b", "ours");
    const std::weak_ptr<const std::string> bytes = ours.bytes;
    const auto count = put({std::move(ours)});
    compositor.removeSeat();
    ASSERT_TRUE(spinUntil([&] { return changes == 1; }));
    EXPECT_THAT(board.ability().reason, HasSubstr("no seat"));
    EXPECT_THAT(offered()->types, IsEmpty());
    EXPECT_GT(board.changeCount(), count);
    EXPECT_TRUE(bytes.expired());
    EXPECT_TRUE(hears("drop claim"));
    EXPECT_TRUE(hears("unwatch"));
    const auto before = board.changeCount();
    EXPECT_EQ(board.write({.items = {item("a/b", "lost")}}), before);

    compositor.addSeat();
    ASSERT_TRUE(spinUntil([&] { return changes == 2; }));
    expectToGoOn();

    // One for the other, so that there is one at any moment that is looked at.
    compositor.run([&] {
        compositor.removeSeat();
        compositor.addSeat();
    });
    ASSERT_TRUE(spinUntil([&] { return offered()->types.empty(); }));
    expectToGoOn();
}

TEST_F(ExtDataControl, whatIsOnItsWayToASeatThatGoesIsGivenUp) {
    std::promise<void> isSeen;
    clipboard.onClaim = [&] {
        compositor.removeSeat();
        compositor.flush();
        isSeen.get_future().wait(); // it confirms the claim after that
    };
    const auto count = board.write({.items = {item("a/b", "ours")}});
    std::vector<std::string> told;
    board.read(count, "a/b", plenty, [&](const auto& reading) { told.push_back(reading.problem); });
    EXPECT_TRUE(becomesAble(false));
    EXPECT_TRUE(spinUntil([&] { return told.size() == 1; }));
    EXPECT_THAT(told, ElementsAre("something else lies on the clipboard now"));
    isSeen.set_value();
    compositor.run([] {});
    EXPECT_THAT(offered()->types, IsEmpty()) << "not even once it is confirmed";
    clipboard.onClaim = {};
    compositor.addSeat();
    ASSERT_TRUE(becomesAble(true));
    expectToGoOn();
}

TEST_F(ExtDataControl, aClipboardThatIsShownNoMoreIsToldInWords) {
    put({item("a/b", "ours")});
    clipboard.finish();
    ASSERT_TRUE(becomesAble(false));
    EXPECT_THAT(board.ability().reason, HasSubstr("no more"));
    EXPECT_THAT(offered()->types, IsEmpty());
    EXPECT_TRUE(hears("unwatch"));
    compositor.removeSeat();
    compositor.addSeat();
    ASSERT_TRUE(becomesAble(true));
    expectToGoOn();
}

} // namespace
} // namespace tessarine
