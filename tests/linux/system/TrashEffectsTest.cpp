#include "launcherapp/platform/linux/system/files/TrashEffects.h"

#include "tests/linux/system/SystemFixture.h"

#include <functional>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Does the work at once and keeps for itself that it is done, as a thread does that hangs.
class SilentWork : public WorkQueues {
public:
    explicit SilentWork(WorkQueues& others) : others_(others) {}

    SerialQueue& serial(std::string_view name) override { return others_.serial(name); }

    void submit(WorkPriority priority,
                std::function<void()> job,
                std::function<void()> completion) override {
        others_.submit(priority, std::move(job), std::move(completion));
    }

    void submitApart(std::function<void()> job, std::function<void()> completion) override {
        job();
        silent.push_back(std::move(completion));
    }

    std::vector<std::function<void()>> silent;

private:
    WorkQueues& others_;
};

class TrashEffectsTest : public SystemFixture {};

TEST_F(TrashEffectsTest, aDiskThatGetsOnIsWaitedForAndOneThatHangsIsNamed) {
    scratch.folder("/data/Trash/files");
    scratch.write("/data/Trash/files/a", "x");
    SilentWork hanging(work);
    workDoor = &hanging;
    patience.disk = Seconds{.03};
    auto made = doors();
    made.user = ::getuid();
    const auto effect =
        TrashEffects::empty({.doors = std::make_shared<const SystemDoors>(std::move(made))});
    EXPECT_THAT(ended(effect.perform).value_or(""), HasSubstr("the home folder does not answer"));
    ASSERT_EQ(hanging.silent.size(), 1U);
    hanging.silent.front()();
    EXPECT_THAT(log,
                ElementsAre("trash: still emptying the home folder, 1 file(s) gone so far",
                            "trash: 0 item(s) removed; the home folder does not answer",
                            "trash: the home folder answered after all: 1 item(s) removed"));
}

} // namespace
} // namespace tessarine
