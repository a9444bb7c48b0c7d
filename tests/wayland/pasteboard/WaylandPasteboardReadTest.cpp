#include "tests/wayland/pasteboard/WaylandOwner.h"
#include "tests/wayland/pasteboard/WaylandPasteboardFixture.h"

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

class WaylandPasteboardRead : public WaylandPasteboardFixture {};

void givesNothing(WaylandOwner&, const std::string&, FileDescriptor) {}

TEST_F(WaylandPasteboardRead, readsWhatAnotherProgramCopies) {
    const struct {
        const char* type;
        std::string bytes;
    } cases[] = {
        {"text/plain;charset=utf-8", "Grüße, 世界\n"},
        {"text/uri-list", "file:///tmp/a%20b\r\nfile:///tmp/c\r\n"},
        {"image/png", manyBytes(300)},
        {"image/x-large", manyBytes(20'000'000)}, // far more than a pipe holds
    };

    for (const auto& [type, bytes] : cases) {
        SCOPED_TRACE(type);
        copyElsewhere({QStringLiteral("--type"), QString::fromLatin1(type)}, bytes);
        EXPECT_THAT(readsWhole(type, bytes), Contains(type));
    }
}

TEST_F(WaylandPasteboardRead, tellsTheTypesOfASecretWithoutAskingForIt) {
    const auto before = board.changeCount();
    const WaylandOwner owner({"text/plain", "x-kde-passwordManagerHint"}, givesNothing);
    ASSERT_TRUE(reaches(before + 1));
    EXPECT_THAT(offered()->types, ElementsAre("text/plain", "x-kde-passwordManagerHint"));
    offered();
    EXPECT_EQ(owner.timesAsked, 0);
    // A type that isn't there costs the owner no question either.
    EXPECT_EQ(read("image/png").problem, "the clipboard holds no such type");
    EXPECT_EQ(owner.timesAsked, 0);
}

TEST_F(WaylandPasteboardRead, stopsAtTheLimit) {
    const auto bytes = manyBytes(3'000'000);
    copyElsewhere({QStringLiteral("--type"), QStringLiteral("a/b")}, bytes);
    readsUpToTheLimit(bytes);
}

/// How an owner misbehaves when it is asked for its content, and what comes of it.
TEST_F(WaylandPasteboardRead, survivesOwnersThatMisbehave) {
    std::vector<FileDescriptor> kept;

    const struct {
        const char* reason;
        WaylandOwner::Answer answer;
        Outcome outcome;
        std::string bytes;
    } cases[] = {
        {"never writes and keeps the pipe",
         [&](auto&, auto&, auto into) { kept.push_back(std::move(into)); },
         Outcome::failed,
         ""},
        {"closes at once, which is an empty content", givesNothing, Outcome::complete, ""},
        {"writes piece by piece, but does write",
         [](auto& owner, auto&, auto into) {
             for (const auto* piece : {"a", "b", "c"}) {
                 std::this_thread::sleep_for(60ms);
                 owner.write(into, piece);
             }
         },
         Outcome::complete,
         "abc"},
        {"stops in the middle",
         [&](auto& owner, auto&, auto into) {
             owner.write(into, "half");
             kept.push_back(std::move(into));
         },
         Outcome::failed,
         ""},
        {"never comes to an end",
         [](auto& owner, auto&, auto into) {
             while (!owner.isOver && owner.write(into, "x"))
                 std::this_thread::sleep_for(50ms);
         },
         Outcome::failed,
         ""},
    };

    for (const auto& [reason, answer, outcome, bytes] : cases) {
        SCOPED_TRACE(reason);
        reads([&answer = answer] { return WaylandOwner({"text/plain"}, answer); }, outcome, bytes);
    }
    // And a good one is heard after all of them.
    copyElsewhere({QStringLiteral("--type"), QStringLiteral("a/b")}, "good");
    EXPECT_EQ(read("a/b").bytes, "good");
}

TEST_F(WaylandPasteboardRead, takesNoMoreOfAGigabyteThanTheLimit) {
    const std::string piece(1'000'000, 'x');
    const auto before = board.changeCount();
    const WaylandOwner owner({"a/b"}, [&](auto& self, auto&, auto into) {
        for (int i = 0; i < 1000 && self.write(into, piece); ++i) {
        }
    });
    ASSERT_TRUE(reaches(before + 1));
    EXPECT_EQ(read("a/b", 10'000'000).outcome, Outcome::tooLarge);
    EXPECT_LE(owner.writtenBytes, 11'000'000U);
}

TEST_F(WaylandPasteboardRead, aChangeEndsWhatWasAskedBefore) {
    std::vector<FileDescriptor> kept;
    const auto before = board.changeCount();
    const WaylandOwner silent({"a/b"},
                              [&](auto&, auto&, auto into) { kept.push_back(std::move(into)); });
    ASSERT_TRUE(reaches(before + 1));
    std::optional<PasteboardReading> told;
    board.read(before + 1, "a/b", plenty, [&](auto reading) { told = std::move(reading); });
    ASSERT_TRUE(spinUntil([&] { return silent.timesAsked == 1; }));
    const WaylandOwner next({"c/d"}, givesNothing);
    ASSERT_TRUE(spinUntil([&] { return told.has_value(); }));
    EXPECT_EQ(told->outcome, Outcome::failed);
    EXPECT_EQ(told->problem, "something else lies on the clipboard now");
    EXPECT_THAT(offered()->types, ElementsAre("c/d"));
}

TEST_F(WaylandPasteboardRead, anOwnerThatVanishesWithinAContentLeavesNoHalf) {
    const auto before = board.changeCount();
    auto owner = std::make_unique<WaylandOwner>(std::vector<std::string>{"a/b"},
                                                [](auto& self, auto&, auto into) {
                                                    self.write(into, "half");
                                                    while (!self.isOver)
                                                        std::this_thread::sleep_for(1ms);
                                                });
    ASSERT_TRUE(reaches(before + 1));
    std::optional<PasteboardReading> told;
    board.read(before + 1, "a/b", plenty, [&](auto reading) { told = std::move(reading); });
    ASSERT_TRUE(spinUntil([&] { return owner->writtenBytes == 4; }));
    const WaylandOwner next({"c/d"}, givesNothing);
    owner.reset();
    ASSERT_TRUE(spinUntil([&] { return told.has_value(); }));
    EXPECT_EQ(told->outcome, Outcome::failed) << told->bytes;
}

TEST_F(WaylandPasteboardRead, believesNoListOfTypesBlindly) {
    std::vector<std::string> thousands;
    for (int i = 0; i < 3000; ++i)
        thousands.push_back("x/" + std::to_string(i % 300));
    std::vector<std::string> tooMany;
    for (std::size_t i = 0; i <= DataOffer::mostTypes; ++i)
        tooMany.push_back("x/" + std::to_string(i));

    const struct {
        const char* reason;
        std::vector<std::string> types;
        std::optional<std::size_t> told;
    } cases[] = {
        {"nothing at all", {}, 0},
        {"thousands, of which the last may be a secret's mark", thousands, 300},
        {"far more than any program offers", tooMany, std::nullopt},
        {"names that are none", {"a\nb", "\xff\xfe", std::string(3000, 'a'), "", "a/b"}, 1},
    };

    for (const auto& [reason, types, told] : cases) {
        SCOPED_TRACE(reason);
        believes([&types = types] { return WaylandOwner(types, givesNothing); }, told);
    }
}

} // namespace
} // namespace tessarine
