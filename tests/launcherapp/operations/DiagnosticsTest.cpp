#include "launcherapp/operations/Diagnostics.h"

#include "tests/fakes/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace tessarine {
namespace {

constexpr auto logPath = "/data/tessarine/tessarine.log";
constexpr auto previousPath = "/data/tessarine/log.txt";

class DiagnosticsTest : public testing::Test {
protected:
    Diagnostics start(Diagnostics::Run run) {
        return Diagnostics(
            platform.queue, platform.work, platform.files, [] { return "/data/tessarine"; }, run);
    }

    std::string text(const std::string& path) {
        return platform.files.read(path, std::string::npos).value_or("(absent)");
    }

    FakePlatform platform;
};

TEST_F(DiagnosticsTest, aLineIsAStampABlankAndTheMessage) {
    auto diagnostics = start(Diagnostics::Run::resident);
    platform.time.settle();
    EXPECT_EQ(text(logPath), "(absent)"); // nothing is made before the first line
    platform.time.advance(Seconds{1.25});
    diagnostics.log("paste: 12 characters");
    diagnostics.log("a name\nwith a line end");
    EXPECT_EQ(text(logPath), "(absent)"); // the caller doesn't wait for the disk
    platform.time.settle();
    EXPECT_EQ(text(logPath),
              "2026-01-01T00:00:01.250Z paste: 12 characters\n"
              "2026-01-01T00:00:01.250Z a name with a line end\n");
}

TEST_F(DiagnosticsTest, linesAreStampedByUniversalTimeWhereverTheUserIs) {
    ::setenv("TZ", "America/New_York", 1);
    ::tzset();
    auto diagnostics = start(Diagnostics::Run::oneShot);
    diagnostics.log("a line");
    platform.time.settle();
    EXPECT_EQ(text(logPath), "2026-01-01T00:00:00.000Z a line\n");
    ::unsetenv("TZ");
    ::tzset();
}

TEST_F(DiagnosticsTest, aResidentRunKeepsTheTextOfTheRunBefore) {
    platform.files.file(logPath, "before\n");
    platform.files.file(previousPath, "long before\n");
    auto resident = start(Diagnostics::Run::resident);
    resident.log("first");
    auto oneShot = start(Diagnostics::Run::oneShot);
    oneShot.log("second");
    platform.time.settle();
    EXPECT_EQ(text(previousPath), "before\n");
    EXPECT_EQ(text(logPath), "2026-01-01T00:00:00.000Z first\n2026-01-01T00:00:00.000Z second\n");
}

TEST_F(DiagnosticsTest, aFullLogBeginsAnew) {
    auto diagnostics = start(Diagnostics::Run::resident);
    diagnostics.log(std::string(Diagnostics::rotationBytes - 100, 'a'));
    diagnostics.log(std::string(100, 'b'));
    platform.time.settle();
    EXPECT_EQ(text(previousPath).size(), Diagnostics::rotationBytes - 100 + 26);
    EXPECT_EQ(text(logPath).size(), 126u);
}

TEST_F(DiagnosticsTest, aLogThatCannotBeWrittenTroublesNobody) {
    platform.files.forbid("/data");
    auto diagnostics = start(Diagnostics::Run::resident);
    diagnostics.log("lost");
    platform.time.settle();
    EXPECT_EQ(text("/data/tessarine/tessarine.log"), "(absent)");
    platform.files.allow("/data"); // a folder that comes back is used again
    diagnostics.log("kept");
    platform.time.settle();
    EXPECT_EQ(text(logPath), "2026-01-01T00:00:00.000Z kept\n");
}

TEST_F(DiagnosticsTest, findsTheMiddleOfTheSortedList) {
    EXPECT_EQ(Diagnostics::median({}), std::nullopt);
    EXPECT_EQ(Diagnostics::median({9, 1, 5}), 5);
    EXPECT_EQ(Diagnostics::median({9, 1, 5, 7}), 7) << "of two middle ones the upper";
}

} // namespace
} // namespace tessarine
