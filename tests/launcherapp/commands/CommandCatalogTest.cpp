#include "launcherapp/commands/CommandCatalog.h"

#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/SystemCommands.h"
#include "tests/fakes/FakeAlerts.h"
#include "tests/fakes/FakeServices.h"
#include "tests/fakes/FakeSystemEffects.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace tessarine {
namespace {

using testing::Contains;
using testing::HasSubstr;

struct Offer {
    FakeServices services;
    FakeSystemEffects effects{services.platform.queue};
    FakeAlerts alerts;
    SystemCommands system{{.queue = services.platform.queue,
                           .work = services.platform.work,
                           .files = services.platform.files,
                           .catalog = services.catalog,
                           .running = services.running,
                           .prefs = services.prefs,
                           .effects = effects,
                           .alerts = alerts,
                           .diagnostics = services.diagnostics,
                           .openWindows = [] { return std::vector<OpenWindow>(); },
                           .closeWindow = {},
                           .showPanel = {}},
                          services.environment};
    CommandHotkeys hotkeys{{.hotkey = [] { return nullptr; },
                            .usage = services.usage,
                            .diagnostics = services.diagnostics},
                           {}};
    CommandStore store{{.queue = services.platform.queue,
                        .work = services.platform.work,
                        .files = {std::shared_ptr<void>(), &services.platform.files},
                        .directories = services.platform.watcher,
                        .prefs = services.prefs,
                        .diagnostics = services.diagnostics,
                        .hotkeys = hotkeys,
                        .environment = services.environment},
                       "/home/u",
                       CommandStore::Content::file};
    CommandCatalog catalog{store, system, hotkeys};

    void read(const std::string& commands) {
        services.platform.files.file("/home/u/commands.json",
                                     R"({"version": 1, "commands": [)" + commands + "]}");
        store.load();
    }

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
