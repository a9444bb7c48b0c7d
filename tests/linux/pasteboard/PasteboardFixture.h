#pragma once

#include "launcherapp/platform/linux/pasteboard/X11Pasteboard.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QProcess>
#include <QStringList>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

class PasteboardFixture : public testing::Test {
protected:
    using Outcome = PasteboardReading::Outcome;
    static constexpr std::size_t plenty = std::size_t{64} << 20;

    PasteboardFixture() {
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

    /// Another program copies this, and goes on serving it in the background.
    void copyElsewhere(const QString& type, const std::string& bytes) {
        const auto before = board.changeCount();
        QProcess xclip;
        xclip.setStandardOutputFile(QProcess::nullDevice());
        xclip.setStandardErrorFile(QProcess::nullDevice());
        xclip.start(QStringLiteral("xclip"),
                    {QStringLiteral("-selection"),
                     QStringLiteral("clipboard"),
                     QStringLiteral("-t"),
                     type});
        xclip.write(QByteArray::fromStdString(bytes));
        xclip.closeWriteChannel();
        ASSERT_TRUE(xclip.waitForFinished());
        ASSERT_TRUE(reaches(before + 1));
    }

    /// What another program gets.
    static std::string pasteElsewhere(const QString& type) {
        QProcess xclip;
        xclip.start(QStringLiteral("xclip"),
                    {QStringLiteral("-selection"),
                     QStringLiteral("clipboard"),
                     QStringLiteral("-o"),
                     QStringLiteral("-t"),
                     type});
        EXPECT_TRUE(xclip.waitForFinished());
        return xclip.readAllStandardOutput().toStdString();
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

    QtMainQueue queue;
    X11Pasteboard board{
        queue,
        {.silence = std::chrono::milliseconds(200), .whole = std::chrono::milliseconds(2000)}};
};

} // namespace tessarine
