#include "launcherapp/commands/CommandCatalog.h"

#include "tests/launcherapp/commands/CommandOffer.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tessarine {
namespace {

using testing::Contains;
using testing::HasSubstr;

struct OwnServices {
    FakeServices own;
};

struct Offer : OwnServices, CommandOffer {
    Offer() : CommandOffer(own) {}

    const CommandSpec* find(const std::string& id) const {
        const auto all = catalog.all();
        const auto found = std::ranges::find(all, id, &CommandSpec::id);
        return found == all.end() ? nullptr : &*found;
    }
};

TEST(CommandCatalog, aUsersCommandTakesThePlaceAndTheWordsOfTheMachines) {
    Offer offer;
    EXPECT_TRUE(offer.find("sys.lock")) << "before anything was read";
    EXPECT_TRUE(offer.catalog.isUsers("any")) << "the file may have it";
    int changes = 0;
    const auto watch = offer.catalog.onChange([&] { ++changes; });
    offer.read(R"({"id": "mine", "name": "Away", "kind": "system", "action": "lockScreen"})");
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(offer.find("sys.lock"));
    EXPECT_TRUE(offer.find("sys.sleep"));
    EXPECT_EQ(offer.catalog.all().front().id, "mine") << "the user's own come first";
    EXPECT_THAT(*offer.find("mine")->aliases, Contains("Lock Screen"));
    EXPECT_TRUE(offer.catalog.isUsers("mine"));
    EXPECT_FALSE(offer.catalog.isUsers("sys.sleep"));
    EXPECT_FALSE(offer.store.file().commands.front().aliases) << "the file's own stay as written";
}

TEST(CommandCatalog, aRowSaysWhatKeepsItsCommandFromWorking) {
    Offer offer;
    offer.read(R"({"id": "a", "name": "A", "kind": "script"},
                  {"id": "b", "name": "B", "kind": "open", "urls": ["x:y"], "hotkey": "cmd+1"},
                  {"id": "c", "name": "C", "kind": "open", "urls": ["x:y"], "keyword": "c"},
                  {"id": "d", "name": "D", "kind": "system", "action": "sleep"})");
    const auto detail = [&](const char* id) { return offer.catalog.detail(*offer.find(id)); };
    EXPECT_EQ(detail("a"), "a: kind script needs a script");
    EXPECT_THAT(detail("b").value(), HasSubstr("⌘1 not registered: there is no display"));
    EXPECT_EQ(detail("c"), std::nullopt) << "its keyword is shown";
    EXPECT_THAT(detail("d").value(), HasSubstr("Puts this computer to sleep now"));
    offer.effects.lose(SystemAction::sleep, "the session may not");
    EXPECT_EQ(detail("d"), "Can't be done here: the session may not");
    EXPECT_THAT(offer.services.log(), HasSubstr("commands.json: a: kind script needs a script"));
}

} // namespace
} // namespace tessarine
