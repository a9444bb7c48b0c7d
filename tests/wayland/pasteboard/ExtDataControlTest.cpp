#include "launcherapp/platform/linux/pasteboard/wayland/WaylandPasteboard.h"
#include "tests/linux/pasteboard/BoardFixture.h"
#include "tests/wayland/standin/StandInClipboard.h"

#include <algorithm>
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

/// A clipboard that is reached by ext-data-control alone.
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

} // namespace
} // namespace tessarine
