#include "tests/linux/pasteboard/ForeignOwner.h"
#include "tests/linux/pasteboard/PasteboardFixture.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <sys/types.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// A program that takes things from the clipboard, at its own pace.
class Requestor : public ForeignClient {
public:
    void ask(const std::string& target, const std::string& property, xcb_timestamp_t time = 0) {
        xcb_convert_selection(display.xcb(),
                              window,
                              display.atom("CLIPBOARD"),
                              display.atom(target),
                              display.atom(property),
                              time);
        xcb_flush(display.xcb());
    }

    /// Whether it was granted.
    bool isGranted() {
        const auto answer = next<xcb_selection_notify_event_t>(XCB_SELECTION_NOTIFY);
        return answer && answer->property != XCB_ATOM_NONE;
    }

    struct Property {
        xcb_atom_t type = 0;
        std::string bytes;
    };

    Property take(const std::string& name) {
        const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            display.xcb(),
            xcb_get_property(display.xcb(), 1, window, display.atom(name), 0, 0, 0x1fffffff),
            nullptr));
        return {.type = reply->type,
                .bytes = std::string(
                    static_cast<const char*>(xcb_get_property_value(reply.get())),
                    static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))};
    }

    /// All increments of several properties, as they come.
    std::map<std::string, std::string> takeIncrements(std::vector<std::string> names) {
        std::map<std::string, std::string> whole;
        while (!names.empty()) {
            const auto event = next<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY);
            if (!event)
                return {};
            const auto name = std::ranges::find_if(
                names, [&](const auto& each) { return display.atom(each) == event->atom; });
            if (event->state != XCB_PROPERTY_NEW_VALUE || name == names.end())
                continue;
            const auto piece = take(*name);
            if (piece.type == display.atom("INCR"))
                continue;
            whole[*name] += piece.bytes;
            if (piece.bytes.empty())
                names.erase(name);
        }
        return whole;
    }
};

class X11PasteboardWrite : public PasteboardFixture {};

TEST_F(X11PasteboardWrite, givesEachTypeToAnotherProgram) {
    const auto picture = manyBytes(20'000'000);
    const auto count = put({item("text/plain;charset=utf-8", "Grüße"),
                            item("UTF8_STRING", "Grüße"),
                            item("image/png", picture),
                            item("x-test/empty", "")});
    EXPECT_EQ(count, board.changeCount());
    EXPECT_EQ(pasteElsewhere(QStringLiteral("text/plain;charset=utf-8")), "Grüße");
    EXPECT_EQ(pasteElsewhere(QStringLiteral("UTF8_STRING")), "Grüße");
    EXPECT_TRUE(pasteElsewhere(QStringLiteral("image/png")) == picture);
    const auto targets = pasteElsewhere(QStringLiteral("TARGETS"));
    EXPECT_THAT(targets, HasSubstr("image/png"));
    EXPECT_THAT(targets, Not(HasSubstr("x-kde")));
}

TEST_F(X11PasteboardWrite, marksASecret) {
    put({item("UTF8_STRING", "hunter2")}, true);
    EXPECT_THAT(pasteElsewhere(QStringLiteral("TARGETS")), HasSubstr("x-kde-passwordManagerHint"));
    EXPECT_EQ(pasteElsewhere(QStringLiteral("x-kde-passwordManagerHint")), "secret");
}

TEST_F(X11PasteboardWrite, tellsUsOurOwnFromMemory) {
    put({item("a/b", "one"), item("c/d", "three")}, true);
    EXPECT_THAT(offered()->types, ElementsAre("a/b", "c/d", "x-kde-passwordManagerHint"));
    EXPECT_EQ(read("c/d").bytes, "three");
    EXPECT_EQ(read("c/d", 4).outcome, Outcome::tooLarge);
    EXPECT_EQ(read("e/f").outcome, Outcome::failed);
    EXPECT_EQ(read("a/b", plenty, board.changeCount() - 1).outcome, Outcome::failed);
}

TEST_F(X11PasteboardWrite, lettingGoFreesTheBytes) {
    auto item = this->item("a/b", "one");
    const std::weak_ptr<const std::string> bytes = item.bytes;
    put({std::move(item)});
    EXPECT_FALSE(bytes.expired());
    copyElsewhere(QStringLiteral("a/b"), "two");
    EXPECT_TRUE(spinUntil([&] { return bytes.expired(); }));
    EXPECT_EQ(read("a/b").bytes, "two");
}

TEST_F(X11PasteboardWrite, answersManyQuestionsInOne) {
    const auto large = manyBytes(20'000'000);
    put({item("a/large", large), item("a/small", "small")});
    Requestor requestor;
    const auto& display = requestor.display;
    const std::vector<std::uint32_t> pairs{display.atom("a/large"),
                                           display.atom("ONE"),
                                           display.atom("a/none"),
                                           display.atom("TWO"),
                                           display.atom("a/small"),
                                           display.atom("THREE"),
                                           display.atom("a/small"),
                                           XCB_ATOM_NONE};
    xcb_change_property(display.xcb(),
                        XCB_PROP_MODE_REPLACE,
                        requestor.window,
                        display.atom("LIST"),
                        display.atom("ATOM_PAIR"),
                        32,
                        static_cast<std::uint32_t>(pairs.size()),
                        pairs.data());
    requestor.ask("MULTIPLE", "LIST");
    ASSERT_TRUE(requestor.isGranted());
    const auto list = requestor.take("LIST").bytes;
    std::vector<std::uint32_t> answered(list.size() / 4);
    std::memcpy(answered.data(), list.data(), list.size());
    auto expected = pairs;
    expected[2] = expected[6] = XCB_ATOM_NONE; // what could not be had (ICCCM 2.6.2)
    EXPECT_EQ(answered, expected);
    EXPECT_EQ(requestor.take("THREE").bytes, "small");
    EXPECT_EQ(requestor.take("ONE").type, display.atom("INCR"));
    EXPECT_TRUE(requestor.takeIncrements({"ONE"})["ONE"] == large);
}

TEST_F(X11PasteboardWrite, servesSeveralAtOnceAndOutlivesThoseThatGoAway) {
    const auto large = manyBytes(5'000'000);
    put({item("a/large", large)});
    {
        Requestor killed;
        killed.ask("a/large", "HERE");
        ASSERT_TRUE(killed.isGranted());
        killed.take("HERE"); // it has the first piece on its way, and is gone
    }
    Requestor idle;
    idle.ask("a/large", "HERE");
    ASSERT_TRUE(idle.isGranted());
    Requestor first;
    Requestor second;
    for (auto* each : {&first, &second}) {
        each->ask("a/large", "HERE");
        ASSERT_TRUE(each->isGranted());
        each->take("HERE");
    }
    EXPECT_TRUE(first.takeIncrements({"HERE"})["HERE"] == large);
    EXPECT_TRUE(second.takeIncrements({"HERE"})["HERE"] == large);
    // What the idle one could still have is no longer kept for it once its time is over.
    spinFor(300);
    idle.take("HERE");
    EXPECT_FALSE(idle.next<xcb_selection_notify_event_t>(XCB_SELECTION_NOTIFY,
                                                         std::chrono::milliseconds(20)));
    EXPECT_EQ(idle.take("HERE").type, xcb_atom_t{XCB_ATOM_NONE});
    EXPECT_EQ(pasteElsewhere(QStringLiteral("a/large")).size(), large.size());
}

TEST_F(X11PasteboardWrite, refusesWhatItCantGive) {
    put({item("a/b", "text"), item("a/large", manyBytes(5'000'000))});
    Requestor requestor;
    requestor.ask("a/none", "HERE");
    EXPECT_FALSE(requestor.isGranted());
    requestor.ask("MULTIPLE", "HERE"); // without a list
    EXPECT_FALSE(requestor.isGranted());
    requestor.ask("TIMESTAMP", "HERE");
    ASSERT_TRUE(requestor.isGranted());
    xcb_timestamp_t since = 0;
    std::memcpy(&since, requestor.take("HERE").bytes.data(), sizeof since);
    EXPECT_NE(since, 0U);
    requestor.ask("a/b", "HERE", since - 1); // what lay there before it was ours
    EXPECT_FALSE(requestor.isGranted());
    requestor.ask("a/b", "HERE", since);
    EXPECT_TRUE(requestor.isGranted());
    for (int i = 0; i < 32; ++i) {
        requestor.ask("a/large", "PLACE" + std::to_string(i));
        EXPECT_TRUE(requestor.isGranted());
    }
    requestor.ask("a/large", "ONE TOO MANY");
    EXPECT_FALSE(requestor.isGranted());
    requestor.ask("a/b", "");
    EXPECT_TRUE(requestor.isGranted());
}

} // namespace
} // namespace tessarine
