#include "launcherapp/catalog/FileOpener.h"

#include "tests/launcherapp/commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using testing::Pair;

TEST(FileOpener, anAddressOpensByItsSchemeAndAFileByItsType) {
    CommandFixture fixture;
    fixture.types.byPath = {{"/d/a b.txt", {"text/x-log", "text/plain"}}, {"/d/x", {"a/b"}}};

    const struct {
        const char* reason;
        std::string url;
        std::optional<std::string> problem;
    } cases[] = {
        {"a scheme", "chat:c", std::nullopt},
        {"a file", "file:///d/a%20b.txt", std::nullopt},
        {"a scheme of nobody",
         "a-scheme-too-long-for-a-short-string:x",
         "no application opens a-scheme-too-long-for-a-short-string addresses"},
        {"a type of nobody", "file:///d/x", "no application opens /d/x (a/b)"},
        {"no file", "file:///gone", "/gone is no longer there"},
    };

    for (const auto& [reason, url, problem] : cases) {
        SCOPED_TRACE(reason);
        std::optional<std::optional<std::string>> told;
        // A string that is gone before the answer comes, as a row's is.
        fixture.opener.openUrl(std::string(url), [&](const auto& what) { told = what; });
        EXPECT_FALSE(told) << "within the call";
        fixture.settle();
        EXPECT_THAT(told, Optional(problem));
    }
    EXPECT_THAT(fixture.handed(),
                ElementsAre(Pair("org.x.Chat", ElementsAre("chat:c")),
                            Pair("org.x.Notes", ElementsAre("file:///d/a%20b.txt"))));

    fixture.bus.answers["org.x.Notes"] = "it is broken";
    fixture.opener.open("/d/a b.txt");
    fixture.opener.open("/gone");
    EXPECT_THAT(fixture.services.log(), HasSubstr("open: /d/a b.txt could not be opened: "));
    EXPECT_THAT(fixture.services.log(), HasSubstr("open: /gone is no longer there\n"));
}

} // namespace
} // namespace tessarine
