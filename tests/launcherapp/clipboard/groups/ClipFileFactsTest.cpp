#include "launcherapp/clipboard/groups/ClipFileFacts.h"

#include "tests/fakes/FakeMainQueue.h"
#include "tests/fakes/FakeWorkQueues.h"
#include "tests/fakes/MemoryFileStore.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

constexpr Seconds ttl{ClipGroupsRuntime::fileFactTTL};
constexpr Seconds forEver{1e9};

class ClipFileFactsTest : public testing::Test {
protected:
    /// What is known of the file's bytes; "unknown", or "none" when there is no file.
    std::string bytes(const std::string& path) {
        const auto found = facts.beginning(path);
        return found ? found->bytes.value_or("none") : "unknown";
    }

    bool isOld(const std::string& path) { return facts.beginning(path)->isOld; }

    VirtualTime time;
    FakeMainQueue queue{time};
    FakeWorkQueues work{time};
    std::shared_ptr<MemoryFileStore> files = std::make_shared<MemoryFileStore>();
    ClipFileFacts facts{queue, work, files};
    int arrivals = 0;
    Subscription subscription = facts.onArrival([this] { ++arrivals; });
};

TEST_F(ClipFileFactsTest, readsTheBeginningOfWhatIsAFile) {
    files->file("/short", "claim");
    files->file("/long", std::string(5000, 'x'));
    files->file("/secret", "claim");
    files->forbid("/secret");
    files->folder("/folder");
    files->link("/link", "short");
    files->link("/dangling", "nowhere");

    const struct {
        const char* path;
        std::optional<std::string> bytes;
        const char* reason;
    } cases[] = {
        {"/short", "claim", "a file, whole"},
        {"/long", std::string(4096, 'x'), "no more than is looked at"},
        {"/link", "claim", "by a link"},
        {"/secret", "", "without permission"},
        {"/folder", "", "a folder, as whatever else is no regular file"},
        {"/dangling", std::nullopt, "a link to nowhere"},
        {"/absent", std::nullopt, "nothing"},
    };

    for (const auto& [path, bytes, reason] : cases)
        EXPECT_EQ(ClipFileFacts::read(*files, path).bytes, bytes) << reason;
}

TEST_F(ClipFileFactsTest, answersAtOnceAndTellsWhenItKnowsMore) {
    files->file("/f", "one");
    work.apartDuration = Seconds{1};
    EXPECT_EQ(bytes("/f"), "unknown");
    EXPECT_EQ(bytes("/f"), "unknown");
    EXPECT_EQ(work.submittedApart, 1); // one look at a path at a time
    time.advance(Seconds{1});
    EXPECT_EQ(arrivals, 1);
    EXPECT_EQ(bytes("/f"), "one");
    EXPECT_FALSE(isOld("/f"));

    files->file("/f", "two");
    time.advance(ttl);
    EXPECT_EQ(bytes("/f"), "one"); // until the new look has ended
    EXPECT_TRUE(isOld("/f"));
    time.advance(Seconds{1});
    EXPECT_EQ(arrivals, 2);
    EXPECT_EQ(bytes("/f"), "two");

    files->remove("/f");
    time.advance(ttl);
    bytes("/f");
    time.advance(Seconds{1});
    EXPECT_EQ(bytes("/f"), "none");
    EXPECT_EQ(arrivals, 3);
    time.advance(ttl);
    bytes("/f");
    time.advance(Seconds{1});
    EXPECT_EQ(arrivals, 3); // nothing that a list would show otherwise
    EXPECT_FALSE(isOld("/f"));
    queue.epoch -= 100;
    EXPECT_TRUE(isOld("/f")); // what was learnt in the future may be wrong for long
}

TEST_F(ClipFileFactsTest, looksAtTheOthersThoughADriveHangs) {
    work.durationsApart = {forEver, forEver, forEver, forEver};
    for (int i = 0; i < 4; ++i)
        bytes("/hanging/" + std::to_string(i));
    files->file("/sound", "claim");
    EXPECT_EQ(bytes("/sound"), "unknown");
    EXPECT_EQ(work.submittedApart, 4);
    time.advance(ClipFileFacts::patience);
    EXPECT_EQ(bytes("/sound"), "claim");
    EXPECT_EQ(bytes("/hanging/0"), "unknown");

    work.apartDuration = forEver;
    for (int i = 0; i < 100; ++i) {
        bytes("/hanging/" + std::to_string(i));
        time.advance(ClipFileFacts::patience);
    }
    EXPECT_EQ(work.submittedApart, 1 + static_cast<int>(ClipFileFacts::mostHanging));
}

TEST(ClipFileFacts, mayGoWhileAFileIsLookedAt) {
    VirtualTime time;
    FakeMainQueue queue{time};
    FakeWorkQueues work{time};
    const auto files = std::make_shared<MemoryFileStore>();
    {
        ClipFileFacts facts(queue, work, files);
        facts.beginning("/f");
    }
    time.advance(ClipFileFacts::patience);
    EXPECT_TRUE(time.idle());
}

} // namespace
} // namespace tessarine
