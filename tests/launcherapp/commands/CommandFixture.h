#pragma once

#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/platform/FileManager.h"
#include "launcherapp/platform/FileTypes.h"
#include "tests/fakes/FakeServices.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// What runs commands, over the fakes and three applications that the bus starts: "Web" opens https
/// and mailto, "Chat" opens chat, "Notes" opens plain text.
struct CommandFixture {
    struct Types : FileTypes {
        std::vector<std::string> types(const std::string& path) const override {
            const auto found = byPath.find(path);
            return found == byPath.end() ? std::vector<std::string>() : found->second;
        }

        std::map<std::string, std::vector<std::string>> byPath;
    };

    struct Manager : FileManager {
        void reveal(const std::string& path,
                    Seconds,
                    std::function<void(std::optional<std::string>)>) override {
            revealed.push_back(path);
        }

        std::optional<std::string> trash(const std::string&) override { return std::nullopt; }

        std::vector<std::string> revealed;
    };

    /// One that takes its time even to take a message.
    struct SlowBus : FakeApplicationBus {
        explicit SlowBus(FakePlatform& platform)
            : FakeApplicationBus(platform.queue), time(platform.time) {}

        void activate(const BusActivation& request,
                      Seconds timeout,
                      std::function<void(std::optional<std::string>)> done) override {
            time.advance(holds);
            FakeApplicationBus::activate(request, timeout, std::move(done));
        }

        VirtualTime& time;
        Seconds holds{0};
    };

    CommandFixture() {
        const std::string onBus = "DBusActivatable=true\nMimeType=";
        services.install(
            "org.x.Web", "Web", onBus + "x-scheme-handler/https;x-scheme-handler/mailto;\n");
        services.install("org.x.Chat", "Chat", onBus + "x-scheme-handler/chat;\n");
        services.install("org.x.Notes", "Notes", onBus + "text/plain;\n");
        for (const auto* name : {"org.x.Web", "org.x.Chat", "org.x.Notes"})
            bus.answers[name] = std::nullopt;
        services.environment.programDirs = {"/home/u/bin", "/usr/bin", "/opt/x/bin"};
        services.startCatalog();
    }

    void settle() { services.platform.time.settle(); }

    using Handed = std::pair<std::string, std::vector<std::string>>;

    /// What the applications were given, in order.
    std::vector<Handed> handed() const {
        std::vector<Handed> result;
        for (const auto& request : bus.requests)
            result.emplace_back(request.busName, request.uris);
        return result;
    }

    std::vector<std::shared_ptr<FakeProgramReader::Program>>& started() {
        return services.platform.programs.started;
    }

    FakeServices services;
    std::shared_ptr<Types> shared = std::make_shared<Types>();
    Types& types = *shared;
    Manager manager;
    SlowBus bus{services.platform};
    AppLauncher launcher{services.platform.queue,
                         services.platform.processes,
                         bus,
                         services.platform.tokens,
                         Environment{}};
    FileOpener opener{{.queue = services.platform.queue,
                       .catalog = services.catalog,
                       .launcher = launcher,
                       .types = types,
                       .manager = manager,
                       .diagnostics = services.diagnostics}};
    LinkOpener links{{.queue = services.platform.queue,
                      .work = services.platform.work,
                      .catalog = services.catalog,
                      .launcher = launcher,
                      .opener = opener,
                      .types = shared,
                      .diagnostics = services.diagnostics}};
    CommandRuntime runtime{{.queue = services.platform.queue,
                            .processes = services.platform.processes,
                            .programs = services.platform.programs,
                            .tokens = services.platform.tokens,
                            .catalog = services.catalog,
                            .opener = opener,
                            .links = links,
                            .diagnostics = services.diagnostics},
                           services.environment};
};

} // namespace tessarine
