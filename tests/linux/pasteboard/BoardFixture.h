#pragma once

#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QString>
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

    /// What another program has copied as that type is read whole. Gives all types that it offers.
    std::vector<std::string> readsWhole(const std::string& type, const std::string& bytes) {
        const auto offer = offered();
        EXPECT_TRUE(offer);
        EXPECT_EQ(offer ? offer->count : 0, board.changeCount());
        const auto reading = read(type);
        EXPECT_EQ(reading.outcome, Outcome::complete) << reading.problem;
        EXPECT_TRUE(reading.bytes == bytes) << reading.bytes.size();
        return offer ? offer->types : std::vector<std::string>();
    }

    /// What lies there as "a/b" is read up to a limit and no further.
    void readsUpToTheLimit(const std::string& bytes) {
        EXPECT_EQ(read("a/b", bytes.size()).outcome, Outcome::complete);
        EXPECT_EQ(read("a/b", bytes.size() - 1).outcome, Outcome::tooLarge);
        EXPECT_EQ(read("a/b", 0).outcome, Outcome::tooLarge);
        // What was given up on doesn't get into what follows.
        const auto whole = read("a/b");
        EXPECT_EQ(whole.problem, "");
        EXPECT_TRUE(whole.bytes == bytes) << whole.bytes.size();
    }

    /// What comes of asking an owner for its text. `own` makes one that owns the clipboard.
    template <typename Own> void reads(const Own& own, Outcome outcome, const std::string& bytes) {
        withOwner(own, [&] {
            const auto reading = read("text/plain");
            EXPECT_EQ(reading.outcome, outcome) << reading.problem;
            EXPECT_EQ(reading.bytes, bytes);
            EXPECT_EQ(reading.problem.empty(), outcome == Outcome::complete);
        });
    }

    /// How many types are believed of an owner; nothing where it is not heard out.
    template <typename Own> void believes(const Own& own, std::optional<std::size_t> types) {
        withOwner(own, [&] {
            const auto offer = offered();
            ASSERT_EQ(offer.has_value(), types.has_value());
            EXPECT_EQ(offer ? offer->types.size() : 0, types.value_or(0));
        });
    }

    /// Nothing is owned any more when this returns.
    template <typename Own> void withOwner(const Own& own, const std::function<void()>& check) {
        const auto before = board.changeCount();
        {
            const auto owner = own();
            ASSERT_TRUE(reaches(before + 1));
            check();
        }
        ASSERT_TRUE(reaches(before + 2)) << "its end would be taken for the next one's change";
    }

    /// The last word after `writeAgainst`: both have the same in the end. `paste` gives what
    /// another program gets of a type.
    void agreesAtTheEnd(const std::function<std::string(const QString& type)>& paste) {
        put({item("a/b", "the end")});
        EXPECT_EQ(paste(QStringLiteral("a/b")), "the end");
        const auto count = board.changeCount();
        spinFor(50);
        EXPECT_EQ(board.changeCount(), count);
    }

    /// Neither being asked for the count nor what `happens` wakes the clipboard's thread.
    void sleepsThrough(const std::function<void()>& happens) {
        put({item("a/b", "ours")});
        spinFor(50);
        const auto before = sleeps();
        ASSERT_GT(before, 0);
        for (int i = 0; i < 100; ++i)
            board.changeCount();
        happens();
        spinFor(1000);
        EXPECT_EQ(sleeps(), before);
        put({item("a/b", "ours again")});
        EXPECT_GT(sleeps(), before);
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
