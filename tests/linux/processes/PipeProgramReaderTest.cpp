#include "launcherapp/platform/linux/processes/PipeProgramReader.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/desktop/SystemdScope.h"
#include "launcherapp/platform/linux/processes/PipeReading.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <charconv>
#include <csignal>
#include <fstream>
#include <optional>
#include <sys/resource.h>

namespace tessarine {
namespace {

using testing::HasSubstr;

std::optional<std::size_t> residentBytes() {
    std::ifstream file("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    if (file >> all >> resident)
        return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return std::nullopt;
}

/// Whether the process is there and no mere entry that nobody has taken note of yet.
bool isAlive(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    std::string number;
    std::string name;
    std::string state;
    return (file >> number >> name >> state) && state != "Z";
}

class PipeProgramReaderTest : public testing::Test {
protected:
    struct Result {
        std::optional<ProcessEnd> end;
        std::shared_ptr<RunningProcess> process;
        int calls = 0;
        Seconds took{0};
    };

    std::shared_ptr<Result>
    begin(const std::string& script, const OutputReading& reading = {}, ProcessSpec spec = {}) {
        spec.arguments = {"/bin/sh", "-c", script, "launcher", "an argument", folder.path()};
        auto result = std::make_shared<Result>();
        const auto began = queue.uptime();
        result->process = reader->start(spec, reading, [this, result, began](ProcessEnd end) {
            EXPECT_TRUE(queue.isMainThread());
            result->end = std::move(end);
            result->took = queue.uptime() - began;
            ++result->calls;
        });
        EXPECT_FALSE(result->end) << "nothing is told inside the call";
        return result;
    }

    ProcessEnd resultOf(const std::string& script,
                        const OutputReading& reading = {},
                        const ProcessSpec& spec = {}) {
        const auto result = begin(script, reading, spec);
        EXPECT_TRUE(spinUntil([&] { return result->end.has_value(); })) << script;
        EXPECT_FALSE(result->process->isRunning());
        EXPECT_EQ(result->calls, 1);
        return result->end.value_or(ProcessEnd{.status = -1});
    }

    /// What a script wrote there, once it has.
    std::string written(const std::string& below) {
        EXPECT_TRUE(spinUntil([&] { return folder.text(below).ends_with('\n'); })) << below;
        auto text = folder.text(below);
        if (!text.empty())
            text.pop_back();
        return text;
    }

    ScratchFolder folder;
    Environment environment{.home = folder.path()};
    QtMainQueue queue;
    std::optional<PipeProgramReader> reader{std::in_place, queue, environment};
};

TEST_F(PipeProgramReaderTest, whatAProgramPrintsAndHowItEndsIsTold) {
    using enum OutputReading::Errors;
    const std::string binary("\0\xff\x1b\n", 4);

    const struct {
        const char* reason;
        std::string script;
        OutputReading reading;
        ProcessEnd end;
    } cases[] = {
        {"the arguments after the text", "printf %s \"$0 $1\"", {}, {0, "launcher an argument"}},
        {"a status of its own", "echo no; exit 3", {}, {3, "no\n"}},
        {"a signal, as a shell tells it", "echo a; kill -9 $$", {}, {137, "a\n"}},
        {"both streams in their order", "echo a; echo b >&2; echo c", {}, {0, "a\nb\nc\n"}},
        {"errors dropped", "echo a; echo b >&2; echo c", {.errors = dropped}, {0, "a\nc\n"}},
        {"bytes of any kind", "printf '\\000\\377\\033\\n'", {}, {0, binary}},
        {"no input to wait for", "cat; echo end", {}, {0, "end\n"}},
        {"just as much as is kept", "printf 12345", {.keepBytes = 5}, {0, "12345"}},
        {"a byte more", "printf 123456", {.keepBytes = 5}, {0, "12345", true}},
        {"output closed long before the end", "exec >&- 2>&-; sleep 0.1; exit 4", {}, {4, ""}},
        {"home is where it runs", "[ \"$PWD\" = \"$2\" ]", {}, {0, ""}},
    };

    for (const auto& [reason, script, reading, end] : cases) {
        SCOPED_TRACE(reason);
        EXPECT_EQ(resultOf(script, reading), end);
    }
    EXPECT_EQ(resultOf("printf %s \"$EXTRA\"", {}, {.environment = {{"EXTRA", "a b"}}}).output,
              "a b");
    // The last 28 are enough: the C library keeps two beyond the 31 of old for itself.
    EXPECT_EQ(resultOf("sed -n -E 's/^Sig(Blk|Ign):\t.{9}(.*)/\\2/p' /proc/self/status").output,
              "0000000\n0000000\n");
}

TEST_F(PipeProgramReaderTest, whatCannotBeHadIsTheProgramsProblem) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "NOT MEASURED: a sanitizer opens files itself to look at an exception";
#endif
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_THROW(begin("true"), ProcessError) << "its reading thread has nothing to wait by";
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(resultOf("echo a").output, "a\n") << "the next one is none the worse";

    EXPECT_THROW(begin(std::string("echo a\0echo b", 13)), ProcessError)
        << "the program would see the half of it";
}

TEST_F(PipeProgramReaderTest, aHundredMegabytesAreReadAndNotKept) {
    const auto before = residentBytes();
    const auto end = resultOf("head -c 100000000 /dev/zero; echo said >&2; exit 5");
    EXPECT_EQ(end.status, 5);
    EXPECT_EQ(end.output.size(), OutputReading{}.keepBytes);
    EXPECT_TRUE(end.isCut);
    const auto after = residentBytes();
    ASSERT_TRUE(before && after);
    EXPECT_LT(*after, *before + (std::size_t{8} << 20));
}

TEST_F(PipeProgramReaderTest, whatIsLeftBehindHoldsNothingUpAndMayGoOnPrinting) {
    const auto result = begin("echo at once;"
                              "(sleep 1.2; echo late; echo alive > \"$2/daemon\") & exit 0");
    ASSERT_TRUE(spinUntil([&] { return result->end.has_value(); }));
    EXPECT_EQ(*result->end, (ProcessEnd{0, "at once\n"}));
    EXPECT_GE(result->took, PipeReading::grace);
    EXPECT_LT(result->took, Seconds{1.2});
    // A broken pipe would have ended it.
    EXPECT_EQ(written("/daemon"), "alive");
    EXPECT_EQ(result->calls, 1);
}

TEST_F(PipeProgramReaderTest, aHangingProgramIsEndedWithItsGroup) {
    const auto polite = begin("sleep 100 & echo $! > \"$2/child\"; wait");
    const auto child = written("/child");
    EXPECT_TRUE(polite->process->isRunning());
    polite->process->terminate();
    ASSERT_TRUE(spinUntil([&] { return polite->end.has_value(); }));
    EXPECT_EQ(polite->end->status, 128 + SIGTERM);
    EXPECT_TRUE(spinUntil([&] { return !isAlive(child); }));
    polite->process->terminate(); // nothing is left of it
}

TEST_F(PipeProgramReaderTest, oneThatIsEndedAtOnceEnds) {
    for (int i = 0; i < 50; ++i) {
        const auto hasty = begin("sleep 100");
        hasty->process->terminate();
        ASSERT_TRUE(spinUntil([&] { return hasty->end.has_value(); })) << i;
    }
}

TEST_F(PipeProgramReaderTest, whatRefusesToEndIsKilledAfterTwoSeconds) {
    const auto stubborn = begin("trap '' TERM; sleep 100 & echo $! > \"$2/child\"; wait");
    const auto leader = begin("(trap '' TERM; echo $$ > \"$2/ready\"; sleep 100) >&- 2>&- &"
                              "echo $! > \"$2/orphan\"; wait");
    const auto child = written("/child");
    const auto orphan = written("/orphan");
    written("/ready");
    const auto asked = queue.uptime();
    stubborn->process->terminate();
    leader->process->terminate();
    ASSERT_TRUE(spinUntil([&] { return leader->end.has_value(); }));
    EXPECT_LT(queue.uptime() - asked, PipeReading::patience) << "the one that was asked has ended";
    EXPECT_TRUE(isAlive(orphan));
    ASSERT_TRUE(spinUntil([&] { return stubborn->end.has_value(); }));
    EXPECT_GE(queue.uptime() - asked, PipeReading::patience);
    EXPECT_EQ(stubborn->end->status, 128 + SIGKILL);
    EXPECT_TRUE(spinUntil([&] { return !isAlive(child) && !isAlive(orphan); }));
}

TEST_F(PipeProgramReaderTest, manyAreReadAtOnce) {
    const auto hanging = begin("yes");
    std::vector<std::shared_ptr<Result>> results;
    for (int i = 0; i < 30; ++i)
        results.push_back(begin("echo " + std::to_string(i)));
    for (int i = 0; i < 30; ++i) {
        auto& result = *results[static_cast<std::size_t>(i)];
        ASSERT_TRUE(spinUntil([&] { return result.end.has_value(); }));
        EXPECT_EQ(result.end->output, std::to_string(i) + "\n");
    }
    EXPECT_TRUE(hanging->process->isRunning());
    hanging->process->terminate();
    ASSERT_TRUE(spinUntil([&] { return hanging->end.has_value(); }));
}

TEST_F(PipeProgramReaderTest, whatRunsWhenTheReaderGoesRunsOnUnlessItWasAskedToEnd) {
    const auto working =
        begin("echo $$ > \"$2/working\"; while [ ! -e \"$2/go\" ]; do echo word;"
              "sleep 0.02; done; head -c 300000 /dev/zero; echo done > \"$2/out\"");
    const auto ending = begin("trap '' TERM; echo $$ > \"$2/ending\"; sleep 100");
    written("/working");
    const auto process = written("/ending");
    ending->process->terminate();
    reader.reset();
    EXPECT_TRUE(spinUntil([&] { return !isAlive(process); }));
    spinFor(50);
    folder.write("/go", "");
    EXPECT_EQ(written("/out"), "done");
    EXPECT_EQ(working->calls + ending->calls, 0);
    working->process->terminate(); // by somebody who still holds it
}

TEST_F(PipeProgramReaderTest, whatCannotBeStartedIsToldInWordsAndCostsNothing) {
    for (int i = 0; i < 3000; ++i) { // more than there may be open files
        try {
            reader->start({.arguments = {"/no/such/shell", "-c", "x"}}, {}, [](const auto&) {
                ADD_FAILURE() << "it never began";
            });
            FAIL();
        } catch (const ProcessError& error) {
            ASSERT_THAT(error.what(), HasSubstr("/no/such/shell could not be started"));
        }
    }
}

TEST_F(PipeProgramReaderTest, aNamedProgramGetsAScope) {
    BusObject systemd("org.freedesktop.systemd1", "/org/freedesktop/systemd1");
    ASSERT_TRUE(systemd.owns);
    resultOf("true");
    EXPECT_TRUE(systemd.last.member().isEmpty());
    const auto number = resultOf("printf %s $$", {}, {.name = "my-script"}).output;
    std::int64_t process = 0;
    std::from_chars(number.data(), number.data() + number.size(), process);
    ASSERT_TRUE(spinUntil([&] { return !systemd.last.member().isEmpty(); }));
    EXPECT_EQ(systemd.last.arguments().at(0).toString().toStdString(),
              SystemdScope::unitName(process, "my-script"));
}

} // namespace
} // namespace tessarine
