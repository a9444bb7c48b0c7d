#include "launcherapp/catalog/AppCatalogSelftest.h"

#include "LauncherCore/catalog/DesktopEntry.h"
#include "LauncherCore/catalog/Launchable.h"
#include "launcherapp/catalog/AppScan.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

namespace {

struct Fixture {
    std::string_view name;
    std::string_view meaning;
    std::string_view lines; ///< beside those that every entry has
    bool listed;
};

constexpr std::string_view parsecShape = "TEST Parsec Shape";

constexpr auto fixtures = std::to_array<Fixture>({
    {"TEST Plain", "an ordinary app", "", true},
    {parsecShape,
     "background-only with a category and an icon, the Parsec shape",
     "NoDisplay=true\nCategories=Utility;\nIcon=X\n",
     true},
    {"TEST Icon Only", "background-only with only an icon", "NoDisplay=true\nIcon=X\n", true},
    {"TEST URL Handler",
     "background-only with neither, the URL-handler shape",
     "NoDisplay=true\nMimeType=x-scheme-handler/test-tsr;\n",
     false},
    {"TEST String Flag", "the string form of the flag, with neither", "NoDisplay=1\n", false},
});

/// Ids under which the application of that shape is packaged for this system.
constexpr auto liveIDs = std::to_array<std::string_view>({"parsec", "com.parsecapp.Parsec"});

/// The rule before this one: whatever asked for no display was dropped.
bool oldRule(const DesktopEntry& info) {
    return !info.flag("NoDisplay");
}

/// The temporary folder, removed at the end.
class Scratch {
public:
    Scratch(FileStore& files, const Environment& environment)
        : files_(files),
          path_(fmt::format("{}/tsr-app-catalog-{:x}",
                            environment.temporaryDir,
                            std::chrono::steady_clock::now().time_since_epoch().count())) {
        files_.makeDirectories(path_);
    }

    ~Scratch() {
        try {
            files_.remove(path_);
        } catch (const FileError&) {
            // What the system's own clean-up will find.
        }
    }

    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::string& path() const { return path_; }

    std::string write(const Fixture& fixture) {
        std::string id(fixture.name);
        std::erase(id, ' ');
        auto path = path_ + "/test.tsr." + id + ".desktop";
        files_.save(path,
                    fmt::format("[Desktop Entry]\nType=Application\nName={}\nExec=true\n{}",
                                fixture.name,
                                fixture.lines));
        return path;
    }

private:
    FileStore& files_;
    std::string path_;
};

class Check {
public:
    Check(FileStore& files, const Environment& environment)
        : files_(files), environment_(environment), scratch_(files, environment) {
        // The fixtures are ordinary entries; the session's language and desktop are not at issue.
        environment_.languagePriority.clear();
        environment_.messagesLocale = "C";
    }

    SelftestResult run() {
        std::vector<std::string> paths;
        paths.reserve(fixtures.size());
        for (const auto& fixture : fixtures)
            paths.push_back(scratch_.write(fixture));
        const auto scan = AppScan::scan(files_, environment_, {scratch_.path()});
        for (std::size_t i = 0; i < fixtures.size(); ++i)
            checkFixture(fixtures[i], *scan.registry, paths[i]);
        checkDecoy(paths);
        checkLive();
        say(failed_ ? std::string("selftest-app-catalog: FAILED, see the lines above")
                    : fmt::format("selftest-app-catalog: {} fixtures are classified as they "
                                  "should be, and the old rule is told apart from the new one",
                                  fixtures.size()));
        return {.verdict =
                    failed_ ? SelftestResult::Verdict::refuted : SelftestResult::Verdict::proved,
                .report = report_};
    }

private:
    void say(const std::string& line) {
        if (!report_.empty())
            report_ += '\n';
        report_ += line;
    }

    void fail(const std::string& line) {
        say(line);
        failed_ = true;
    }

    void
    checkFixture(const Fixture& fixture, const AppRegistry& registry, const std::string& path) {
        const auto* app = registry.byPath(path);
        if (!app) {
            fail(fmt::format("FAIL {} ({}): the fixture bundle did not read back",
                             fixture.name,
                             fixture.meaning));
            return;
        }
        if (app->listed != fixture.listed)
            fail(fmt::format("FAIL {} ({}): listed={}, expected {}",
                             fixture.name,
                             fixture.meaning,
                             app->listed,
                             fixture.listed));
        else
            say(fmt::format("{} ({}): listed={}", fixture.name, fixture.meaning, app->listed));
    }

    void checkDecoy(const std::vector<std::string>& paths) {
        const auto shape = std::ranges::find(fixtures, parsecShape, &Fixture::name);
        const auto index = static_cast<std::size_t>(shape - fixtures.begin());
        const auto bytes = files_.read(paths[index], DesktopEntry::maximumBytes);
        const auto entry = DesktopEntry::parse(bytes.value_or(""), {});
        if (entry && !oldRule(*entry) && Launchable::isLaunchable(*entry))
            say("decoy: the old rule drops the Parsec shape and the new one lists it");
        else
            fail("FAIL decoy: the old rule and the new one agree on the Parsec shape");
    }

    void checkLive() {
        const auto scan = AppScan::scan(files_, environment_, AppScan::roots(environment_, {}));
        for (const auto id : liveIDs) {
            const auto* app = scan.registry->byID(id);
            if (!app)
                continue;
            if (app->listed)
                say(fmt::format("live: {} is listed", app->path));
            else
                fail(fmt::format("FAIL live: {} is still dropped", app->path));
            return;
        }
        say("live: NOT MEASURED, Parsec is not installed on this Mac");
    }

    FileStore& files_;
    Environment environment_;
    Scratch scratch_;
    std::string report_;
    bool failed_ = false;
};

} // namespace

SelftestResult appCatalogSelftest(FileStore& files, const Environment& environment) {
    try {
        return Check(files, environment).run();
    } catch (const FileError& error) {
        return {.verdict = SelftestResult::Verdict::notMeasured,
                .report = fmt::format("selftest-app-catalog: NOT MEASURED, {}", error.what())};
    }
}

} // namespace tessarine
