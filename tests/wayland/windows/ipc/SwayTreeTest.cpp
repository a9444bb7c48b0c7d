#include "launcherapp/platform/linux/wayland/windows/ipc/SwayTree.h"

#include "launcherapp/platform/linux/wayland/windows/ipc/SwayIpc.h"
#include "tests/fakes/RectanglePrinting.h"
#include "tests/linux/EventLoop.h"
#include "tests/wayland/windows/ipc/ListeningSocket.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <sys/socket.h>

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

TEST(SwayTree, whatIsNoTreeIsNothing) {
    for (const std::string text :
         {"", "{", "[]", "null", R"({"type": "output"})", R"({"type": 7})", "\xff\xfe"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(SwayTree::read(text));
    }
    // Parts of other kinds than they should be count as absent.
    const auto read = SwayTree::read(
        R"({"type": "root", "focus": ["x"], "nodes": [7, {"name": 3, "rect": [], "nodes": [null,
            {"name": "1", "nodes": [{"id": "a", "pid": 3}, {"id": -4, "pid": 3},
            {"id": 5, "pid": 3, "rect": {"x": "wide"}, "window_properties": "none"}]}]}]})");
    ASSERT_TRUE(read);
    ASSERT_THAT(read->windows, SizeIs(1));
    EXPECT_EQ(read->windows.front().window.id, 5U);
    EXPECT_FALSE(read->active);
}

/// Windows may call themselves anything, and sway passes it on.
TEST(SwayTree, aTitleThatIsNoTextCostsNothingElse) {
    const std::string title("caf\xe9 \xff");
    EXPECT_TRUE(SwayTree::read(R"({"type": "root", "name": ")" + title + "\"}"));
    EXPECT_EQ(SwayTree::focused(R"({"change": "focus", "container": {"name": ")" + title +
                                R"(", "id": 7}})"),
              7U);
}

TEST(SwayTree, aTreeOfAnyDepthIsRead) {
    std::string text = R"({"type": "root", "nodes": [{"nodes": [)";
    constexpr int depth = 5000;
    for (int i = 0; i < depth; ++i)
        text += R"({"id": 1, "nodes": [)";
    for (int i = 0; i < depth; ++i)
        text += "]}";
    EXPECT_TRUE(SwayTree::read(text + "]}]}"));
}

TEST(SwayTree, titleBarsAndX11NamesAreCountedIn) {
    const auto read = SwayTree::read(
        R"({"type": "root", "focus": [3], "nodes": [{"id": 3, "type": "output", "name": "DP-1",
            "current_workspace": "2", "focus": [5, 4],
            "rect": {"x": 0, "y": 0, "width": 800, "height": 600}, "nodes": [
              {"id": 4, "name": "1", "focus": [9], "rect": {"x": 0, "y": 0, "width": 800,
               "height": 600}, "nodes": [{"id": 9, "pid": 2}]},
              {"id": 5, "name": "2", "focus": [7], "rect": {"x": 0, "y": 20, "width": 800,
               "height": 580}, "floating_nodes": [{"id": 7, "pid": 3, "app_id": null,
               "shell": "xwayland", "window": 4194310, "fullscreen_mode": 1,
               "rect": {"x": 10, "y": 50, "width": 300, "height": 200},
               "deco_rect": {"x": 0, "y": 0, "width": 300, "height": 26},
               "window_properties": {"class": "Old", "instance": "old"}}]}]}]})");
    ASSERT_TRUE(read);
    ASSERT_THAT(read->screens, SizeIs(1));
    EXPECT_EQ(read->screens.front().workArea, (Rectangle{0, 20, 800, 580}));
    ASSERT_THAT(read->windows, SizeIs(2));
    EXPECT_EQ(read->active, 7U); // not 9, on a workspace behind
    const auto& window = *read->find(7);
    EXPECT_EQ(window.frame, (Rectangle{10, 24, 300, 226}));
    EXPECT_EQ(window.window.className, "Old");
    EXPECT_EQ(window.window.instanceName, "old");
    EXPECT_EQ(window.x11Window, 4194310U);
    EXPECT_TRUE(window.isX11 && window.isFullScreen && !window.isTiled);
}

/// What a program at the other end of the socket may say that is not sway.
TEST(SwayIpc, whatIsNoAnswerEndsTheConnection) {
    const std::string tooLong("i3-ipc\xff\xff\xff\x7f\x04\0\0\0", 14);
    const std::string unasked("i3-ipc\x02\0\0\0\x04\0\0\0{}", 16);

    const struct {
        std::string bytes;
        bool endsIt;
    } cases[] = {
        {"HTTP/1.1 400 Bad Request\r\n", true},
        {tooLong, true},  // nobody waits for two gigabytes
        {unasked, false}, // belongs to no question
        {"i3-ip", false}, // the rest may come
    };

    for (const auto& [bytes, endsIt] : cases) {
        SCOPED_TRACE(bytes);
        const ScratchFolder folder;
        const auto socket = listeningSocket(folder.path("/socket"));
        SwayIpc ipc(folder.path("/socket"));
        FileDescriptor other(::accept(socket.number(), nullptr, nullptr));
        int ends = 0;
        ipc.follow([&](const WindowScene& scene) { ends += scene.windows.empty() ? 1 : 0; });
        ASSERT_EQ(ipc.ability(), Ability{});
        ::send(other.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        EXPECT_EQ(ipc.ability().available, !endsIt);
        other = FileDescriptor(); // sway ends
        EXPECT_THAT(ipc.ability().reason, HasSubstr("lost"));
        EXPECT_FALSE(ipc.scene());
        ipc.activate(3);
        EXPECT_EQ(ends, 1); // the windows of before are no windows
    }
}

TEST(SwayIpc, whatCantBeReadIsToldUntilItCan) {
    const auto answer = [](char type, const std::string& json) {
        return std::string("i3-ipc") + static_cast<char>(json.size()) + std::string(3, '\0') +
               type + std::string(3, '\0') + json;
    };
    const ScratchFolder folder;
    const auto socket = listeningSocket(folder.path("/socket"));
    SwayIpc ipc(folder.path("/socket"));
    const FileDescriptor other(::accept(socket.number(), nullptr, nullptr));
    int told = 0;
    ipc.follow([&](const WindowScene&) { ++told; });
    const auto say = [&](const std::string& bytes) {
        ::send(other.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    };
    say(answer(2, "{}") + answer(4, "{"));
    EXPECT_THAT(ipc.ability().reason, HasSubstr("can't be read"));
    EXPECT_EQ(told, 1); // that there are no windows to be told of
    say(std::string("i3-ipc\x02\0\0\0\x03\0\0\x80{}", 16)); // something has happened
    ipc.takeWhatCame();
    say(answer(4, R"({"type": "root"})"));
    EXPECT_EQ(ipc.ability(), Ability{});
    EXPECT_EQ(told, 2);
}

} // namespace
} // namespace tessarine
