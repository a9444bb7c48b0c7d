#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace tessarine {
namespace {

using testing::ElementsAre;

TEST(QtMainQueue, runsTasksLaterInOrderOnItsOwnThread) {
    QtMainQueue queue;
    std::vector<int> order;
    queue.post([&] { order.push_back(1); });
    std::thread([&] {
        EXPECT_FALSE(queue.isMainThread());
        queue.post([&] { order.push_back(queue.isMainThread() ? 2 : -2); });
    }).join();
    queue.postAfter(Seconds{0.02}, [&] { order.push_back(4); });
    queue.postAfter(Seconds{0}, [&] { order.push_back(3); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(spinUntil([&] { return order.size() == 4; }));
    EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST(QtMainQueue, repeatsUntilTheSubscriptionEnds) {
    QtMainQueue queue;
    int runs = 0;
    Subscription timer = queue.every(Seconds{0.005}, Seconds{0}, [&] {
        if (++runs == 3)
            timer.end(); // from inside its own task
    });
    EXPECT_TRUE(spinUntil([&] { return runs == 3; }));
    spinFor(30);
    EXPECT_EQ(runs, 3);
}

TEST(QtMainQueue, takesAnyDelay) {
    QtMainQueue queue;
    std::vector<int> order;
    queue.postAfter(Seconds{-1}, [&] { order.push_back(1); });   // a moment that has passed
    queue.postAfter(Seconds{1e9}, [&] { order.push_back(-1); }); // more milliseconds than an int
    queue.postAfter(Seconds{0.001}, [&] { order.push_back(2); });
    const Subscription timer = queue.every(Seconds{1e9}, Seconds{1}, [&] { order.push_back(-2); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(spinUntil([&] { return order.size() >= 2; }));
    spinFor(20);
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST(QtMainQueueDeathTest, timersAreOfTheMainThread) {
    // Qt would only complain, and the task would never run.
    EXPECT_DEATH(
        {
            QtMainQueue queue;
            std::thread([&] { queue.postAfter(Seconds{0}, [] {}); }).join();
        },
        "off the main thread");
}

TEST(QtMainQueue, dropsWhatWaitsWhenItGoes) {
    bool ran = false;
    {
        QtMainQueue queue;
        queue.post([&] { ran = true; });
        queue.postAfter(Seconds{0.001}, [&] { ran = true; });
    }
    spinFor(20);
    EXPECT_FALSE(ran);
}

TEST(ThreadPoolWorkQueues, bringsAValueBackToTheMainThread) {
    QtMainQueue queue;
    ThreadPoolWorkQueues work(queue);
    std::optional<int> result;
    work.run(
        WorkPriority::utility,
        [&queue] { return queue.isMainThread() ? -1 : 42; },
        [&](int value) { result = queue.isMainThread() ? value : -2; });
    EXPECT_TRUE(spinUntil([&] { return result.has_value(); }));
    EXPECT_EQ(result, 42);
}

TEST(ThreadPoolWorkQueues, whoWaitsIsNotHeldUpByUtilityWork) {
    QtMainQueue queue;
    ThreadPoolWorkQueues work(queue);
    std::promise<void> gate;
    const auto opened = gate.get_future().share();
    for (int i = 0; i < 8; ++i)
        work.run(WorkPriority::utility, [opened] { opened.wait(); });
    bool done = false;
    work.run(
        WorkPriority::userInitiated, [] { return 0; }, [&](int) { done = true; });
    EXPECT_TRUE(spinUntil([&] { return done; }));
    gate.set_value();
}

TEST(ThreadPoolWorkQueues, aSerialQueueKeepsItsOrderAndFinishes) {
    std::vector<int> order;
    {
        QtMainQueue queue;
        ThreadPoolWorkQueues work(queue);
        auto& serial = work.serial("saves");
        EXPECT_EQ(&serial, &work.serial("saves"));
        EXPECT_NE(&serial, &work.serial("other"));
        for (int i = 0; i < 1000; ++i)
            serial.submit([&order, i] { order.push_back(i); });
    }
    ASSERT_EQ(order.size(), 1000u); // none was dropped at the end
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(ThreadPoolWorkQueues, dropsWorkThatHasNotBegun) {
    constexpr int jobs = 500;
    std::atomic<int> begun = 0;
    {
        QtMainQueue queue;
        ThreadPoolWorkQueues work(queue);
        for (int i = 0; i < jobs; ++i)
            work.run(WorkPriority::utility, [&begun] {
                ++begun;
                std::promise<void> never; // a millisecond of work
                never.get_future().wait_for(std::chrono::milliseconds(1));
            });
        ASSERT_TRUE(spinUntil([&] { return begun > 0; }));
    }
    EXPECT_LT(begun, jobs);
}

TEST(ThreadPoolWorkQueues, theEndWaitsForSavesButNotForAHangingDisk) {
    QtMainQueue queue;
    ThreadPoolWorkQueues work(queue);
    std::promise<void> disk;
    const auto answered = disk.get_future().share();
    std::atomic<bool> hangs = false;
    work.run(WorkPriority::utility, [answered, &hangs] {
        hangs = true;
        answered.wait();
    });
    bool saved = false;
    work.serial("saves").submit([&saved] { saved = true; });
    ASSERT_TRUE(spinUntil([&] { return hangs.load(); }));
    EXPECT_FALSE(work.finish(Seconds{0.01}));
    EXPECT_TRUE(saved);
    disk.set_value();
    EXPECT_TRUE(work.finish(Seconds{10}));
}

TEST(ThreadPoolWorkQueues, utilityWorkGivesWay) {
    QtMainQueue queue;
    ThreadPoolWorkQueues work(queue);
    const auto niceness = [] { return ::getpriority(PRIO_PROCESS, 0); }; // of this very thread
    std::optional<int> polite;
    std::optional<int> eager;
    work.run(WorkPriority::utility, niceness, [&](int value) { polite = value; });
    work.run(WorkPriority::userInitiated, niceness, [&](int value) { eager = value; });
    ASSERT_TRUE(spinUntil([&] { return polite && eager; }));
    EXPECT_EQ(eager, ::getpriority(PRIO_PROCESS, 0));
    EXPECT_EQ(polite, 19);
}

TEST(ThreadPoolWorkQueuesDeathTest, aJobThatThrowsIsABugAndEndsTheProgram) {
    EXPECT_DEATH(
        {
            QtMainQueue queue;
            ThreadPoolWorkQueues work(queue);
            work.run(WorkPriority::utility, [] { throw std::runtime_error("the bug"); });
            spinUntil([] { return false; });
        },
        "the bug");
}

} // namespace
} // namespace tessarine
