#pragma once

#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "launcherapp/platform/linux/system/SystemDoors.h"
#include "tests/fakes/FakeMountTable.h"
#include "tests/fakes/FakeProcessLauncher.h"
#include "tests/fakes/FakeProgramReader.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/system/Services.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// The machine of a test: its buses are the tests' own, its home and programs are in a scratch
/// folder, and programs are noted instead of run.
class SystemFixture : public testing::Test {
protected:
    SystemFixture() {
        environment.home = scratch.folder("/home");
        environment.dataHome = scratch.folder("/data");
        environment.runtimeDir = scratch.folder("/run");
        environment.programDirs = {scratch.folder("/bin")};
    }

    void install(const std::string& program) {
        const auto path = scratch.write("/bin/" + program, "#!/bin/false\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        launcher.programs.insert(path);
    }

    SystemDoors doors() {
        return {.queue = queue,
                .work = *workDoor,
                .programs = programs,
                .launcher = launcher,
                .mounts = mounts,
                .environment = environment,
                .log = [this](const std::string& line) { log.push_back(line); },
                .copyImage =
                    [this](const std::string& path, const EffectDone& done) {
                        copied = path;
                        queue.post([done] { done(std::nullopt); });
                    },
                .folderOpener = [this] { return folderOpener; },
                .openUrl =
                    [this](const std::string& url, const EffectDone& done) {
                        opened = url;
                        queue.post([done] { done(std::nullopt); });
                    },
                .blockHolders = [holders = holders](const std::string& device)
                    -> std::optional<std::vector<std::string>> {
                    const auto found = holders.find(device);
                    return found == holders.end() ? std::vector<std::string>() : found->second;
                },
                .colorScheme = [this] { return scheme; },
                .sessionBus = sessionBus,
                .systemBus =
                    [name = QStringLiteral("of-effects-%1").arg(++connections)] {
                        return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
                    },
                .user = 1000,
                .sessionID = "c7",
                .patience = patience};
    }

    /// How it ended; it must be told later, and once.
    std::optional<std::string> ended(const std::function<void(EffectDone)>& act) {
        int calls = 0;
        std::optional<std::string> result;
        act([&](std::optional<std::string> problem) {
            ++calls;
            result = std::move(problem);
        });
        EXPECT_EQ(calls, 0) << "the answer comes later";
        EXPECT_TRUE(spinUntil([&] {
            endPrograms();
            return calls > 0;
        }));
        QCoreApplication::processEvents();
        EXPECT_EQ(calls, 1);
        return result;
    }

    /// Each program prints what the test has for it and ends well.
    void endPrograms() {
        for (; endedPrograms < programs.started.size(); ++endedPrograms) {
            const auto program = programs.started[endedPrograms];
            const auto line = commandLine(program->spec);
            ran.push_back(line);
            const auto printed = prints.find(line);
            program->end({.status = statuses[line],
                          .output = printed == prints.end() ? "" : printed->second});
        }
    }

    /// Without the folder that programs are in.
    std::string commandLine(const ProcessSpec& spec) const {
        std::string line;
        const auto folder = scratch.path("/bin/");
        for (const auto& word : spec.arguments)
            line += (line.empty() ? "" : " ") +
                    (word.starts_with(folder) ? word.substr(folder.size()) : word);
        return line;
    }

    ScratchFolder scratch;
    Environment environment;
    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
    WorkQueues* workDoor = &work; ///< what the doors get
    FakeProgramReader programs{queue};
    FakeProcessLauncher launcher;
    FakeMountTable mounts;
    Services services;
    SystemPatience patience{.leaving = Seconds{.01}, .keyRelease = Seconds{.01}};
    std::string folderOpener;
    /// By device; of all others there are none.
    std::map<std::string, std::optional<std::vector<std::string>>> holders;
    ColorScheme scheme = ColorScheme::none;
    std::vector<std::string> log;
    std::string copied;
    std::string opened;
    std::map<std::string, std::string> prints; ///< by command line
    std::map<std::string, int> statuses;
    std::vector<std::string> ran;
    std::size_t endedPrograms = 0;
    inline static int connections = 0;
};

} // namespace tessarine
