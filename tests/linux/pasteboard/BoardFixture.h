#pragma once

#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessarine {

/// A pasteboard of one kind, with short patience.
template <typename Board> class BoardFixture : public testing::Test {
protected:
    using Outcome = PasteboardReading::Outcome;
    static constexpr std::size_t plenty = std::size_t{64} << 20;

    BoardFixture() {
        // The thread watches once it has answered anything.
        offered();
    }

    std::optional<PasteboardOffer> offered() {
        std::optional<std::optional<PasteboardOffer>> told;
        board.offer([&](std::optional<PasteboardOffer> offer) { told = std::move(offer); });
        EXPECT_TRUE(spinUntil([&] { return told.has_value(); }));
        return *std::move(told);
    }

    PasteboardReading read(const std::string& type,
                           std::size_t limit = plenty,
                           std::optional<std::uint64_t> count = {}) {
        std::optional<PasteboardReading> told;
        board.read(count.value_or(board.changeCount()),
                   type,
                   limit,
                   [&](PasteboardReading reading) { told = std::move(reading); });
        EXPECT_TRUE(spinUntil([&] { return told.has_value(); }));
        return *std::move(told);
    }

    bool reaches(std::uint64_t count) {
        return spinUntil([&] { return board.changeCount() >= count; });
    }

    static PasteboardContent::Item item(const std::string& type, std::string bytes) {
        return {type, std::make_shared<const std::string>(std::move(bytes))};
    }

    /// Puts it there, and is there when this returns.
    std::uint64_t put(std::vector<PasteboardContent::Item> items, bool isSecret = false) {
        const auto count = board.write({.items = std::move(items), .isSecret = isSecret});
        const auto there = offered();
        EXPECT_EQ(there ? there->count : 0, count);
        return count;
    }

    /// Bytes that don't repeat, so that a piece lost or doubled shows.
    static std::string manyBytes(std::size_t count) {
        std::string bytes;
        bytes.reserve(count + sizeof(std::uint32_t));
        for (std::uint32_t i = 0; bytes.size() < count; ++i)
            bytes.append(reinterpret_cast<const char*>(&i), sizeof i);
        bytes.resize(count);
        return bytes;
    }

    /// How often the clipboard's thread has gone to sleep.
    static long sleeps() {
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::string name;
            std::getline(std::ifstream(task.path() / "comm"), name);
            if (name != "pasteboard")
                continue;
            std::ifstream status(task.path() / "status");
            for (std::string line; std::getline(status, line);) {
                if (line.starts_with("voluntary_ctxt_switches:"))
                    return std::stol(line.substr(line.find(':') + 1));
            }
        }
        return -1;
    }

    /// Writes again and again while `rival` does on a thread of its own until it is over. Neither
    /// waits for the other, so that every order comes about.
    void writeAgainst(const std::function<void(const std::atomic<bool>& isOver)>& rival) {
        std::atomic<bool> isOver = false;
        std::thread thread([&] { rival(isOver); });
        std::uint64_t last = 0;
        for (int i = 0; i < 300; ++i) {
            const auto count = board.write({.items = {item("a/b", std::to_string(i))}});
            EXPECT_GT(count, last);
            last = count;
            if (i % 20 == 0)
                spinFor(1);
        }
        isOver = true;
        thread.join();
    }

    QtMainQueue queue;
    Board board{
        queue,
        {.silence = std::chrono::milliseconds(200), .whole = std::chrono::milliseconds(2000)}};
};

} // namespace tessarine
