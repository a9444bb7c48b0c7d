#include "launcherapp/commands/LinkOpener.h"

#include "tests/launcherapp/commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using Activation = LinkOpener::Activation;

TEST(LinkOpener, linksOfOneApplicationGoInOneGoAndOfTwoInTurn) {
    CommandFixture fixture;
    fixture.bus.silent = {"org.x.Web"}; // its Exec key is used after five seconds
    fixture.services.platform.processes.programs = {"org.x.Web"};
    fixture.runtime.run({.id = "o",
                         .kind = CommandKind::open,
                         .urls = {{"https://a.example",
                                   "https://b.example",
                                   "example.org",
                                   "chat:c",
                                   "https://d.example"}}},
                        "");
    fixture.settle();
    const auto first = Pair("org.x.Web", ElementsAre("https://a.example", "https://b.example"));
    EXPECT_THAT(fixture.handed(), ElementsAre(first));
    fixture.services.platform.time.advance(Seconds{6});
    EXPECT_THAT(fixture.handed(),
                ElementsAre(first,
                            Pair("org.x.Chat", ElementsAre("chat:c")),
                            Pair("org.x.Web", ElementsAre("https://d.example"))));
    fixture.services.platform.time.advance(Seconds{6});
    EXPECT_THAT(fixture.services.log(), HasSubstr("open: \"example.org\" of o is no link\n"));
    EXPECT_THAT(fixture.services.log(), HasSubstr("open: 4 link(s) accepted in 10000 ms\n"));
}

TEST(LinkOpener, aFailureIsLoggedAndStopsNoOther) {
    CommandFixture fixture;
    fixture.bus.answers["org.x.Web"] = "it is broken";
    fixture.links.open({"https://a.example",
                        "https://b.example",
                        "gopher://x",
                        "gopher://y",
                        "https://c.example",
                        "chat:c"},
                       Activation::foreground);
    const auto log = fixture.services.log();
    EXPECT_THAT(log, HasSubstr("open: Web could not start: "));
    EXPECT_THAT(log, HasSubstr("open: a gopher link failed: no application opens it\n"));
    EXPECT_THAT(log, HasSubstr("open: a https link failed: "));
    EXPECT_THAT(log, HasSubstr("open: 1 link(s) accepted in 0 ms\n"));
    EXPECT_THAT(log, Not(HasSubstr("held the caller")));
}

TEST(LinkOpener, whoHoldsTheCallerIsTold) {
    CommandFixture fixture;
    fixture.bus.holds = Seconds{0.06};
    fixture.links.open({"https://a.example"}, Activation::foreground);
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("open: handing 1 link(s) to the desktop held the caller 60 ms\n"));
}

TEST(LinkOpener, linksInTheBackgroundTakeNoFocus) {
    CommandFixture fixture;
    fixture.links.open({"https://a.example"}, Activation::background);
    fixture.links.open({"https://a.example"}, Activation::foreground);
    fixture.settle();
    ASSERT_THAT(fixture.bus.requests, SizeIs(2));
    EXPECT_THAT(fixture.bus.requests[0].activationToken, EndsWith("_TIME0"));
    EXPECT_THAT(fixture.bus.requests[1].activationToken, Not(EndsWith("_TIME0")));
}

TEST(LinkOpener, filesOpenByTheirTypeWithoutAWaitForTheDisk) {
    CommandFixture fixture;
    fixture.types.byPath = {{"/d/a.txt", {"text/x-log", "text/plain"}}, {"/d/x", {"a/b"}}};
    fixture.services.platform.work.apartDuration = Seconds{1};
    fixture.links.open({"file:///d/a.txt", "https://a.example", "file:///gone", "file:///d/x"},
                       Activation::foreground);
    fixture.settle();
    EXPECT_THAT(fixture.handed(), IsEmpty());
    fixture.services.platform.time.advance(Seconds{20});
    EXPECT_THAT(fixture.handed(),
                ElementsAre(Pair("org.x.Notes", ElementsAre("file:///d/a.txt")),
                            Pair("org.x.Web", ElementsAre("https://a.example"))));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("open: a file link failed: /gone is no longer there\n"));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("open: a file link failed: no application opens it\n"));

    fixture.bus.requests.clear();
    fixture.services.platform.work.apartDuration = Seconds{3600};
    fixture.links.open({"file:///d/a.txt", "https://a.example"}, Activation::foreground);
    fixture.services.platform.time.advance(LinkOpener::diskPatience);
    EXPECT_THAT(fixture.handed(), ElementsAre(Pair("org.x.Web", ElementsAre("https://a.example"))));
    fixture.services.platform.time.advance(Seconds{3600});
    EXPECT_THAT(fixture.bus.requests, SizeIs(1)) << "it is too late for the file";
    EXPECT_THAT(fixture.services.log(), HasSubstr("the disk of /d/a.txt doesn't answer\n"));
}

TEST(LinkOpener, aDiskThatHangsKeepsNoFileOfAnother) {
    CommandFixture fixture;
    fixture.types.byPath = {{"/d/a.txt", {"text/plain"}}, {"/dead/b.txt", {"text/plain"}}};
    auto& apart = fixture.services.platform.work.durationsApart;
    apart = {Seconds{1}, Seconds{3600}}; // in the order of the paths
    fixture.links.open({"file:///dead/b.txt", "file:///d/a.txt", "file:///d/a.txt"},
                       Activation::foreground);
    fixture.services.platform.time.advance(LinkOpener::diskPatience);
    EXPECT_THAT(
        fixture.handed(),
        ElementsAre(Pair("org.x.Notes", ElementsAre("file:///d/a.txt", "file:///d/a.txt"))));
    EXPECT_THAT(fixture.services.log(), HasSubstr("the disk of /dead/b.txt doesn't answer\n"));
    EXPECT_THAT(fixture.services.log(), Not(HasSubstr("the disk of /d/a.txt")));
    fixture.services.platform.time.advance(Seconds{3600});
    EXPECT_THAT(fixture.bus.requests, SizeIs(1));
}

} // namespace
} // namespace tessarine
