#include "launcherapp/platform/linux/pasteboard/wayland/ContentWriters.h"
#include "tests/wayland/CompositorOfItsOwn.h"
#include "tests/wayland/pasteboard/WaylandOwner.h"
#include "tests/wayland/pasteboard/WaylandPasteboardFixture.h"

#include <ext-data-control-v1.h>
#include <wayland-client.h>
#include <wlr-data-control-unstable-v1.h>

#include <fcntl.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;

class WaylandPasteboardTest : public WaylandPasteboardFixture {};

void givesNothing(WaylandOwner&, const std::string&, FileDescriptor) {}

TEST_F(WaylandPasteboardTest, countsEveryChangeOfTheClipboardAlone) {
    auto count = board.changeCount();
    copyElsewhere({}, "one");
    EXPECT_EQ(board.changeCount(), ++count);
    copyElsewhere({}, "one"); // again
    EXPECT_EQ(board.changeCount(), ++count);
    QProcess::execute(QStringLiteral("wl-copy"),
                      {QStringLiteral("--primary"), QStringLiteral("x")});
    copyElsewhere({QStringLiteral("--clear")}, "");
    EXPECT_EQ(board.changeCount(), ++count);
    EXPECT_THAT(offered()->types, IsEmpty());
    EXPECT_EQ(put({item("a/b", "ours")}), ++count);
    EXPECT_EQ(put({item("a/b", "ours again")}), ++count);
    copyElsewhere({QStringLiteral("--clear")}, "");
    EXPECT_EQ(board.changeCount(), ++count);
    offered();
    EXPECT_EQ(board.changeCount(), count);
}

TEST_F(WaylandPasteboardTest, tellsWhenTheOwnerIsGoneAndNobodyElseCame) {
    std::vector<std::uint64_t> gone;
    const auto subscription =
        board.onAbandoned([&](std::uint64_t count) { gone.push_back(count); });
    const auto before = board.changeCount();
    auto owner = std::make_unique<WaylandOwner>(std::vector<std::string>{"a/b"}, givesNothing);
    ASSERT_TRUE(reaches(before + 1));
    owner.reset();
    ASSERT_TRUE(spinUntil([&] { return !gone.empty(); }));
    EXPECT_THAT(gone, ElementsAre(before + 1));
    // One that was replaced leaves nothing behind, and what is ours is not abandoned.
    owner = std::make_unique<WaylandOwner>(std::vector<std::string>{"a/b"}, givesNothing);
    ASSERT_TRUE(reaches(before + 3));
    EXPECT_EQ(offered()->succession.value().first, before + 1);
    put({item("a/b", "ours")});
    owner.reset();
    copyElsewhere({QStringLiteral("--clear")}, "");
    offered();
    EXPECT_THAT(gone, ElementsAre(before + 1));
}

TEST_F(WaylandPasteboardTest, agreesWithTheCompositorOnWhoWasLast) {
    writeAgainst([](const std::atomic<bool>& isOver) {
        while (!isOver)
            const WaylandOwner other({"a/b"}, givesNothing);
    });
    agreesAtTheEnd(pasteElsewhere);
}

TEST_F(WaylandPasteboardTest, sleepsWhileNothingHappens) {
    sleepsThrough([] {
        QProcess::execute(QStringLiteral("wl-copy"),
                          {QStringLiteral("--primary"), QStringLiteral("x")});
    });
}

TEST_F(WaylandPasteboardTest, givesEachTypeToAnotherProgram) {
    const auto picture = manyBytes(20'000'000);
    const auto count = put({item("text/plain;charset=utf-8", "Grüße"),
                            item("image/png", picture),
                            item("x-test/empty", "")});
    EXPECT_EQ(count, board.changeCount());
    EXPECT_EQ(pasteElsewhere(QStringLiteral("text/plain;charset=utf-8")), "Grüße");
    EXPECT_EQ(pasteElsewhere(QStringLiteral("x-test/empty")), "");
    EXPECT_TRUE(pasteElsewhere(QStringLiteral("image/png")) == picture);
    EXPECT_EQ(typesElsewhere(), "text/plain;charset=utf-8\nimage/png\nx-test/empty\n");
}

TEST_F(WaylandPasteboardTest, marksASecret) {
    put({item("text/plain", "hunter2")}, true);
    EXPECT_THAT(typesElsewhere(), HasSubstr("x-kde-passwordManagerHint"));
    EXPECT_EQ(pasteElsewhere(QStringLiteral("x-kde-passwordManagerHint")), "secret");
    EXPECT_THAT(offered()->types, ElementsAre("text/plain", "x-kde-passwordManagerHint"));
    EXPECT_EQ(read("text/plain").bytes, "hunter2");
    EXPECT_EQ(read("text/plain", 4).outcome, Outcome::tooLarge);
}

TEST_F(WaylandPasteboardTest, lettingGoFreesTheBytes) {
    auto one = item("a/b", "one");
    const std::weak_ptr<const std::string> bytes = one.bytes;
    put({std::move(one)});
    EXPECT_FALSE(bytes.expired());
    copyElsewhere({}, "two");
    EXPECT_TRUE(spinUntil([&] { return bytes.expired(); }));
}

/// Reads to the end, with pauses.
std::string slowly(const FileDescriptor& pipe) {
    std::string whole;
    std::string chunk(1'000'000, '\0');
    for (ssize_t count = 1; count > 0; std::this_thread::sleep_for(1ms)) {
        count = ::read(pipe.number(), chunk.data(), chunk.size());
        whole.append(chunk, 0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return whole;
}

TEST_F(WaylandPasteboardTest, servesManyAtOnceAndWaitsForThoseThatTakeNothing) {
    const auto large = manyBytes(5'000'000);
    put({item("a/large", large)});
    WaylandConnection display;
    DataControl control(display);
    ASSERT_TRUE(control.hasSeat());
    ASSERT_TRUE(display.roundTrip());
    auto events = control.take();
    ASSERT_EQ(events.size(), 1U);
    const auto& offer = *std::get<DataControl::Selected>(events.front()).offer;
    std::vector<FileDescriptor> pipes;
    for (int i = 0; i < 6; ++i) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        pipes.emplace_back(ends[0]);
        const FileDescriptor theirs(ends[1]);
        offer.receive("a/large", theirs.number());
        display.flush();
    }
    pipes.pop_back();                       // one is gone before it got anything
    EXPECT_TRUE(slowly(pipes[0]) == large); // while others take nothing
    std::vector<std::jthread> readers;
    for (const int i : {1, 2})
        readers.emplace_back([&, i] { EXPECT_TRUE(slowly(pipes[i]) == large); });
    readers.clear();
    // What ends too soon looks whole, so nothing ends before somebody has it, however late, and
    // though it has been replaced.
    copyElsewhere({}, "newer");
    sleepsThrough([&] { spinFor(400); });
    EXPECT_TRUE(slowly(pipes[3]) == large);
    // But there is an end to how many are waited for.
    put({item("a/large", large)});
    ASSERT_TRUE(display.roundTrip());
    const auto later = control.take();
    const auto& next = *std::get<DataControl::Selected>(later.back()).offer;
    for (std::size_t i = 0; i <= ContentWriters::most; ++i) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        pipes.emplace_back(ends[0]);
        const FileDescriptor theirs(ends[1]);
        next.receive("a/large", theirs.number());
        display.flush();
    }
    EXPECT_TRUE(slowly(pipes.back()) == large);
    EXPECT_LT(slowly(pipes[4]).size(), large.size()) << "idle for the longest";
}

/// What a protocol's interface looks like on the wire, without the versions that it tells.
std::vector<std::string> wire(const wl_interface& interface) {
    std::vector<std::string> messages;
    const auto add = [&](const wl_message* each, int count) {
        for (const auto* const end = each + count; each != end; ++each) {
            const std::string_view signature = each->signature;
            messages.push_back(std::string(each->name) + " " +
                               std::string(signature.substr(std::min(
                                   signature.find_first_not_of("0123456789"), signature.size()))));
        }
        messages.emplace_back("|");
    };
    add(interface.methods, interface.method_count);
    add(interface.events, interface.event_count);
    return messages;
}

// The heir is spoken to as its forebear is.
TEST(WaylandPasteboardProtocol, isTheSameOnTheWireByBothNames) {
    EXPECT_EQ(wire(ext_data_control_manager_v1_interface),
              wire(zwlr_data_control_manager_v1_interface));
    EXPECT_EQ(wire(ext_data_control_device_v1_interface),
              wire(zwlr_data_control_device_v1_interface));
    EXPECT_EQ(wire(ext_data_control_source_v1_interface),
              wire(zwlr_data_control_source_v1_interface));
    EXPECT_EQ(wire(ext_data_control_offer_v1_interface),
              wire(zwlr_data_control_offer_v1_interface));
}

TEST(WaylandPasteboardCompositor, oneThatDiesEndsEverything) {
    QtMainQueue queue;
    CompositorOfItsOwn compositor;
    WaylandPasteboard board(queue);
    ASSERT_TRUE(board.ability().available) << board.ability().reason;
    std::vector<std::string> told;
    board.offer([&](const auto& offer) { told.emplace_back(offer ? "offer" : "nothing"); });
    ASSERT_TRUE(spinUntil([&] { return told.size() == 1; })); // it watches
    told.clear();
    std::vector<FileDescriptor> kept;
    WaylandOwner owner({"a/b"}, [&](auto&, auto&, auto into) { kept.push_back(std::move(into)); });
    ASSERT_TRUE(spinUntil([&] { return board.changeCount() == 2; }));
    board.read(2, "a/b", 10, [&](const auto& reading) { told.push_back(reading.problem); });
    ASSERT_TRUE(spinUntil([&] { return owner.timesAsked == 1; }));
    compositor.kill();
    ASSERT_TRUE(spinUntil([&] { return told.size() == 1; }));
    EXPECT_EQ(told.back(), "the Wayland display is gone");
    EXPECT_EQ(board.ability(), Ability::missing("the Wayland display is gone"));
    board.offer([&](const auto& offer) { told.emplace_back(offer ? "offer" : "nothing"); });
    ASSERT_TRUE(spinUntil([&] { return told.size() == 2; }));
    EXPECT_EQ(told.back(), "nothing");
    const auto count = board.changeCount();
    EXPECT_EQ(board.write({}), count);
    WaylandPasteboard late(queue);
    EXPECT_EQ(late.ability(), Ability::missing("the Wayland compositor does not answer"));
}

TEST(WaylandPasteboardCompositor, oneThatIsLateIsNotGivenUp) {
    QtMainQueue queue;
    CompositorOfItsOwn compositor;
    compositor.stop();
    WaylandPasteboard board(queue);
    EXPECT_EQ(board.ability(), Ability::missing("the Wayland compositor does not answer"));
    int changes = 0;
    const auto subscription = board.onAbilityChanged([&] { ++changes; });
    compositor.goOn();
    ASSERT_TRUE(spinUntil([&] { return board.ability().available && changes == 1; }));
    const auto count = board.changeCount();
    EXPECT_EQ(board.write({.items = {{"a/b", std::make_shared<std::string>("x")}}}), count + 1);
    std::vector<std::string> told;
    board.read(count + 1, "a/b", 9, [&](const auto& reading) { told.push_back(reading.bytes); });
    ASSERT_TRUE(spinUntil([&] { return !told.empty(); }));
    EXPECT_THAT(told, ElementsAre("x"));
    const WaylandOwner other({"a/b"}, givesNothing);
    EXPECT_TRUE(spinUntil([&] { return board.changeCount() == count + 2; }));
}

TEST(WaylandPasteboardCompositor, oneThatStandsStillHoldsNobodyUp) {
    QtMainQueue queue;
    CompositorOfItsOwn compositor;
    auto board = std::make_unique<WaylandPasteboard>(
        queue, TransferLimits{.silence = 200ms, .whole = 2000ms});
    bool isTold = false;
    board->offer([&](const auto&) { isTold = true; });
    ASSERT_TRUE(spinUntil([&] { return isTold; }));
    compositor.stop();
    const auto begun = queue.uptime();
    const auto count = board->write({.items = {{"a/b", std::make_shared<std::string>("x")}}});
    std::vector<std::string> told;
    board->offer([&](const auto& offer) { told.emplace_back(offer ? "offer" : "nothing"); });
    board->read(count, "a/b", 9, [&](const auto& reading) { told.push_back(reading.problem); });
    ASSERT_TRUE(spinUntil([&] { return told.size() == 2; }));
    EXPECT_THAT(told, ElementsAre("nothing", "the Wayland compositor does not answer"));
    EXPECT_LT((queue.uptime() - begun).count(), 2);
    // When it goes on, so does all else.
    compositor.goOn();
    told.clear();
    board->read(count, "a/b", 9, [&](const auto& reading) { told.push_back(reading.bytes); });
    ASSERT_TRUE(spinUntil([&] { return !told.empty(); }));
    EXPECT_THAT(told, ElementsAre("x"));
    compositor.stop();
    board->write({});
    board.reset();
    compositor.goOn();
}

} // namespace
} // namespace tessarine
