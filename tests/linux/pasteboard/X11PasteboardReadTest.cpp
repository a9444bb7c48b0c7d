#include "tests/linux/pasteboard/ForeignOwner.h"
#include "tests/linux/pasteboard/PasteboardFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class X11PasteboardRead : public PasteboardFixture {
protected:
    using Request = ForeignOwner::Request;
};

TEST_F(X11PasteboardRead, readsWhatAnotherProgramCopies) {
    const struct {
        const char* type;
        std::string bytes;
    } cases[] = {
        {"UTF8_STRING", "Grüße, 世界\n"},
        {"text/uri-list", "file:///tmp/a%20b\r\nfile:///tmp/c\r\n"},
        {"image/png", manyBytes(300)},
        {"image/x-large", manyBytes(20'000'000)}, // in increments
    };

    for (const auto& [type, bytes] : cases) {
        SCOPED_TRACE(type);
        copyElsewhere(QString::fromLatin1(type), bytes);
        EXPECT_THAT(readsWhole(type, bytes), ElementsAre(type));
    }
}

TEST_F(X11PasteboardRead, stopsAtTheLimit) {
    const auto bytes = manyBytes(3'000'000);
    auto content = std::make_unique<QMimeData>();
    content->setData(QStringLiteral("a/b"), QByteArray::fromStdString(bytes));
    const auto before = board.changeCount();
    QGuiApplication::clipboard()->setMimeData(content.release());
    ASSERT_TRUE(reaches(before + 1));
    readsUpToTheLimit(bytes);
}

TEST_F(X11PasteboardRead, answersInOrder) {
    copyElsewhere(QStringLiteral("a/b"), "text");
    std::vector<std::string> told;
    const auto count = board.changeCount();
    board.read(count, "a/b", plenty, [&](const auto& reading) { told.push_back(reading.bytes); });
    board.offer([&](const auto&) { told.emplace_back("offer"); });
    board.read(count - 1, "a/b", plenty, [&](const auto&) { told.emplace_back("old"); });
    board.read(count, "a/c", plenty, [&](const auto&) { told.emplace_back("refused"); });
    ASSERT_TRUE(spinUntil([&] { return told.size() == 4; }));
    EXPECT_THAT(told, ElementsAre("text", "offer", "old", "refused"));
}

/// How an owner misbehaves when it is asked for its content, and what comes of it.
TEST_F(X11PasteboardRead, survivesOwnersThatMisbehave) {
    const struct {
        const char* reason;
        ForeignOwner::Answer answer;
        Outcome outcome;
        std::string bytes;
    } cases[] = {
        {"never answers", [](auto&, auto&) {}, Outcome::failed, ""},
        {"refuses",
         [](auto& owner, auto& request) { owner.tell(request, true); },
         Outcome::failed,
         ""},
        {"says it is there, and it isn't",
         [](auto& owner, auto& request) { owner.tell(request); },
         Outcome::failed,
         ""},
        {"answers with numbers",
         [](auto& owner, auto& request) {
             owner.put(request, "text/plain", 32, "12345678");
             owner.tell(request);
         },
         Outcome::failed,
         ""},
        {"answers piece by piece, but does answer",
         [](auto& owner, auto& request) {
             for (const auto* piece : {"a", "b", "c"}) {
                 std::this_thread::sleep_for(std::chrono::milliseconds(40));
                 owner.put(request, "text/plain", 8, piece, XCB_PROP_MODE_APPEND);
                 xcb_flush(owner.client.display.xcb());
             }
             owner.tell(request);
         },
         Outcome::complete,
         "abc"},
        {"announces a gigabyte and has little",
         [](auto& owner, auto& request) {
             if (owner.beginIncrements(request, 1'000'000'000) && owner.sendPiece(request, "few"))
                 owner.sendPiece(request, "");
         },
         Outcome::complete,
         "few"},
        {"announces little and has more",
         [](auto& owner, auto& request) {
             if (owner.beginIncrements(request, 1) && owner.sendPiece(request, "some ") &&
                 owner.sendPiece(request, "more"))
                 owner.sendPiece(request, "");
         },
         Outcome::complete,
         "some more"},
        {"stops within increments",
         [](auto& owner, auto& request) {
             if (owner.beginIncrements(request, 10))
                 owner.sendPiece(request, "half");
         },
         Outcome::failed,
         ""},
        {"changes the form within increments",
         [](auto& owner, auto& request) {
             if (owner.beginIncrements(request, 10)) {
                 owner.put(request, "text/plain", 16, "half");
                 xcb_flush(owner.client.display.xcb());
             }
         },
         Outcome::failed,
         ""},
        {"never comes to an end",
         [](auto& owner, auto& request) {
             if (owner.beginIncrements(request, 10)) {
                 while (owner.sendPiece(request, "x"))
                     std::this_thread::sleep_for(std::chrono::milliseconds(50));
             }
         },
         Outcome::failed,
         ""},
    };

    for (const auto& [reason, answer, outcome, bytes] : cases) {
        SCOPED_TRACE(reason);
        reads([&answer = answer] { return ForeignOwner(answer); }, outcome, bytes);
    }
    // And a good one is heard after all of them.
    copyElsewhere(QStringLiteral("a/b"), "good");
    EXPECT_EQ(read("a/b").bytes, "good");
}

std::size_t residentBytes() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST_F(X11PasteboardRead, takesNoMoreOfAGigabyteThanTheLimit) {
    const std::string piece(1'000'000, 'x');
    const auto before = board.changeCount();
    const ForeignOwner owner([&](auto& self, const Request& request) {
        bool isWanted = self.beginIncrements(request, 1'000'000'000);
        for (int i = 0; i < 1000 && isWanted; ++i)
            isWanted = self.sendPiece(request, piece);
    });
    ASSERT_TRUE(reaches(before + 1));
    constexpr std::size_t limit = 10'000'000;
    const auto memoryBefore = residentBytes();
    EXPECT_EQ(read("text/plain", limit).outcome, Outcome::tooLarge);
    EXPECT_LE(owner.piecesSent, 11);
    // The address sanitizer keeps what was freed for a while, so the bound is a wide one.
    EXPECT_LT(residentBytes(), memoryBefore + 10 * limit);
}

TEST_F(X11PasteboardRead, aChangeEndsWhatWasAskedBefore) {
    const auto before = board.changeCount();
    const ForeignOwner silent([](auto&, auto&) {});
    ASSERT_TRUE(reaches(before + 1));
    std::optional<PasteboardReading> told;
    bool isOfferOver = false;
    const auto begun = queue.uptime();
    board.read(before + 1, "a/b", plenty, [&](auto reading) { told = std::move(reading); });
    board.offer([&](const auto& offer) { isOfferOver = offer && offer->types.size() == 1; });
    copyElsewhere(QStringLiteral("a/b"), "new");
    ASSERT_TRUE(spinUntil([&] { return told && isOfferOver; }));
    EXPECT_EQ(told->outcome, Outcome::failed);
    EXPECT_EQ(told->problem, "something else lies on the clipboard now");
    EXPECT_LT((queue.uptime() - begun).count(), 5);
}

TEST_F(X11PasteboardRead, anOwnerThatVanishesWithinIncrementsEndsTheReading) {
    const auto before = board.changeCount();
    auto owner = std::make_unique<ForeignOwner>([](auto& self, const Request& request) {
        if (self.beginIncrements(request, 10))
            self.sendPiece(request, "half");
    });
    ASSERT_TRUE(reaches(before + 1));
    std::optional<PasteboardReading> told;
    board.read(before + 1, "a/b", plenty, [&](auto reading) { told = std::move(reading); });
    ASSERT_TRUE(spinUntil([&] { return owner->piecesSent == 1; }));
    owner.reset();
    ASSERT_TRUE(spinUntil([&] { return told.has_value(); }));
    EXPECT_EQ(told->outcome, Outcome::failed);
    EXPECT_THAT(offered()->types, IsEmpty());
}

TEST_F(X11PasteboardRead, believesNoListOfTargetsBlindly) {
    const X11Connection names;
    std::vector<std::uint32_t> thousands;
    for (int i = 0; i < 5000; ++i)
        thousands.push_back(names.atom("x/" + std::to_string(i % 300)));

    const struct {
        const char* reason;
        ForeignOwner::Answer answer;
        std::optional<std::size_t> types;
    } cases[] = {
        {"never answers", [](auto&, auto&) {}, std::nullopt},
        {"refuses", [](auto& owner, auto& request) { owner.tell(request, true); }, std::nullopt},
        {"text for a list",
         [](auto& owner, auto& request) {
             owner.put(request, "UTF8_STRING", 8, "text/plain");
             owner.tell(request);
         },
         std::nullopt},
        {"a list in increments",
         [](auto& owner, auto& request) { owner.beginIncrements(request, 4); },
         std::nullopt},
        {"far more than any program offers",
         [](auto& owner, auto& request) {
             owner.putTargets(request, std::vector<std::uint32_t>(100'000, 31));
         },
         std::nullopt},
        {"thousands, of which the last may be a secret's mark",
         [&](auto& owner, auto& request) { owner.putTargets(request, thousands); },
         300},
        {"atoms that the display never gave, and none",
         [](auto& owner, auto& request) {
             owner.putTargets(request,
                              {0, 0xffffffff, 0x12345678, owner.client.display.atom("a/b")});
         },
         1},
        {"the services that every owner gives are no types",
         [](auto& owner, auto& request) {
             const auto& display = owner.client.display;
             owner.putTargets(request,
                              {display.atom("TARGETS"),
                               display.atom("TIMESTAMP"),
                               display.atom("MULTIPLE"),
                               display.atom("SAVE_TARGETS"),
                               display.atom("DELETE"),
                               display.atom("a/b"),
                               display.atom("a/b")});
         },
         1},
        {"names that are none",
         [](auto& owner, auto& request) {
             const auto& display = owner.client.display;
             owner.putTargets(request,
                              {display.atom("a\nb"),
                               display.atom("\xff\xfe"),
                               display.atom(std::string(30'000, 'a')),
                               display.atom("a/b")});
         },
         1},
    };

    for (const auto& [reason, answer, types] : cases) {
        SCOPED_TRACE(reason);
        believes([&answer = answer] { return ForeignOwner(answer); }, types);
    }
}

} // namespace
} // namespace tessarine
