#include "launcherapp/operations/StateFile.h"

#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::HasSubstr;

struct Document {
    static constexpr auto path = "/support/document.json";
    static constexpr std::size_t most = 10; // bytes

    FakeServices services;
    MemoryFileStore& files = services.platform.files;
    StateFile file{files,
                   services.platform.work.serial("state"),
                   services.diagnostics,
                   path,
                   StateFile::Failures::logged,
                   most};

    StateFile::Saved save(const std::optional<std::string>& text) {
        std::optional<StateFile::Saved> outcome;
        file.saveMade(
            services.platform.queue,
            [text] { return text; },
            [&outcome](StateFile::Saved saved) { outcome = saved; });
        services.platform.time.settle();
        return outcome.value();
    }

    std::string onDisk() const { return files.read(path, 100).value_or("none"); }
};

TEST(StateFile, neverWritesWhatItWouldRefuseToRead) {
    Document document;
    const std::string largest(Document::most, 'x');
    EXPECT_EQ(document.save(largest), StateFile::Saved::yes);
    EXPECT_EQ(document.file.load(), largest);
    EXPECT_EQ(document.save(largest + "x"), StateFile::Saved::no);
    EXPECT_EQ(document.onDisk(), largest);
    EXPECT_THAT(document.services.log(), HasSubstr("too large to be read again"));
}

TEST(StateFile, aSaveTellsWhetherItLiesOnDisk) {
    Document document;
    EXPECT_EQ(document.save("old"), StateFile::Saved::yes);
    EXPECT_EQ(document.save(std::nullopt), StateFile::Saved::no); // given up by who makes it
    document.files.forbid(Document::path);
    EXPECT_EQ(document.save("new"), StateFile::Saved::no);
    document.files.allow(Document::path);
    EXPECT_EQ(document.onDisk(), "old");
}

TEST(StateFile, eachDamagedTextGetsACopyOfItsOwn) {
    Document document;
    for (const auto* const text : {"first", "second"}) {
        document.files.file(Document::path, text);
        document.file.markDamaged(text);
        document.save("good");
        document.save("better"); // one copy is enough
    }
    const auto copies = StateFile::copies(document.files, Document::path);
    ASSERT_EQ(copies.size(), 2U);
    EXPECT_EQ(document.files.read(std::string(Document::path) + ".damaged", 100), "first");
    EXPECT_EQ(document.files.read(std::string(Document::path) + ".damaged-2", 100), "second");
}

} // namespace
} // namespace tessarine
