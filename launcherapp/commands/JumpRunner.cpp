#include "launcherapp/commands/JumpRunner.h"

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/commands/CommandTemplates.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Printable.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/commands/ButtonPresses.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/Accessibility.h"
#include "launcherapp/platform/Alerts.h"
#include "launcherapp/platform/FileTypes.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <utility>

namespace tessarine {

namespace {

using Activation = JumpRunner::Activation;

constexpr std::string_view needsPermission =
    "Tessarine needs Accessibility permission to press buttons in other apps";

/// Where a jump leads, as its command says.
struct Jump {
    std::string id;
    std::optional<std::string> url;
    std::optional<InstalledApp> app; ///< the one to open, and to press in
    std::vector<std::string> names;
    Activation activation = Activation::foreground;
};

std::optional<InstalledApp> copyOf(const InstalledApp* app) {
    return app ? std::optional(*app) : std::nullopt;
}

std::vector<std::string> withoutEmpty(std::vector<std::string> names) {
    std::erase(names, "");
    return names;
}

std::string probeLine(const ButtonPresses::Result& result) {
    if (!result.missing)
        return fmt::format("PRESSED: {}", fmt::join(result.pressed, ", "));
    auto line = fmt::format(
        "NOT PRESSED: could not find {} ({})", result.missing->name, result.missing->reason);
    if (!result.pressed.empty())
        line += fmt::format("; pressed before: {}", fmt::join(result.pressed, ", "));
    return line;
}

} // namespace

struct JumpRunner::Core : std::enable_shared_from_this<Core> {
    explicit Core(Services given)
        : services(std::move(given)), presses({.queue = services.queue,
                                               .work = services.work,
                                               .running = services.running,
                                               .windows = services.windows,
                                               .accessibility = services.accessibility}) {}

    void log(std::string_view id, std::string_view text) {
        services.diagnostics.log(Printable::line(fmt::format("jump {}: {}", id, text)));
    }

    const AppRegistry& registry() const { return *services.catalog.registry(); }

    Jump jump(const CommandSpec& command, const std::string& argument);
    const InstalledApp* appAt(const std::string& path) const;
    void whoOpens(const std::string& url, std::function<void(std::optional<InstalledApp>)> found);

    void take(std::function<void()> turn);
    void next();
    void done();
    void askWhetherTrusted(std::function<void(Ability)> answered);

    void open(const Jump& jump);
    void launch(const Jump& jump, Activation activation);
    void openBehind(const Jump& jump);
    bool bringBack(const InstalledApp& app);
    void pressIn(const Jump& jump);
    void pressed(const Jump& jump, const ButtonPresses::Result& result, Seconds took);
    void comeForward(const Jump& jump, const ButtonPresses::Result& result);
    void sayWhatIsMissing(const Jump& jump, const std::string& reason);

    Services services;
    ButtonPresses presses;
    std::deque<std::function<void()>> turns; ///< the first one is under way
    int launching = 0;                       ///< applications and links
};

Jump JumpRunner::Core::jump(const CommandSpec& command, const std::string& argument) {
    Jump jump{.id = command.id,
              .names = withoutEmpty(command.press.value_or(std::vector<std::string>{})),
              .activation = command.activate.value_or(true) ? Activation::foreground
                                                            : Activation::background};
    if (command.url) {
        jump.url = services.resolve(CommandTemplates::filled(*command.url, argument));
        if (!jump.url)
            log(jump.id, fmt::format("\"{}\" is no link", *command.url));
    }
    if (command.path) {
        jump.app = copyOf(appAt(*command.path));
        if (!jump.app)
            log(jump.id, fmt::format("{} is no installed application", *command.path));
    }
    return jump;
}

const InstalledApp* JumpRunner::Core::appAt(const std::string& path) const {
    const auto url = services.resolve(path);
    const auto name =
        (url ? Urls::filePath(*url) : std::nullopt).value_or(std::string(Folding::trimmed(path)));
    const auto* app = registry().named(name);
    return app ? app : registry().startedBy(name);
}

/// `found` is called once, at once for an address and later for a file, since the disk is asked
/// what that is: nothing when nobody opens it, and when the disk doesn't answer.
void JumpRunner::Core::whoOpens(const std::string& url,
                                std::function<void(std::optional<InstalledApp>)> found) {
    const auto path = Urls::filePath(url);
    if (!path) {
        found(copyOf(registry().handlerForScheme(Urls::scheme(url))));
        return;
    }
    const auto once = [found = std::move(found),
                       isFound = std::make_shared<bool>(false),
                       weak = weak_from_this()](const std::vector<std::string>& types) {
        const auto core = weak.lock();
        if (core && !std::exchange(*isFound, true))
            found(copyOf(core->services.opener.handler(types)));
    };
    services.work.runApart([types = services.types, path = *path] { return types->types(path); },
                           once);
    services.queue.postAfter(diskPatience, [once] { once({}); });
}

/// Turns come one after the other, since two jumps at once would press in each other's windows.
void JumpRunner::Core::take(std::function<void()> turn) {
    turns.push_back(std::move(turn));
    if (turns.size() == 1)
        next();
}

void JumpRunner::Core::next() {
    services.queue.post([weak = weak_from_this()] {
        const auto core = weak.lock();
        if (!core)
            return;
        const auto turn = core->turns.front(); // it may end itself while it runs
        turn();
    });
}

void JumpRunner::Core::done() {
    turns.pop_front();
    if (!turns.empty())
        next();
}

void JumpRunner::Core::askWhetherTrusted(std::function<void(Ability)> answered) {
    services.work.serial(ButtonPresses::serialQueue)
        .submit([accessibility = services.accessibility,
                 answered = std::move(answered),
                 &queue = services.queue,
                 weak = weak_from_this()] {
            queue.post([ability = accessibility->ability(), answered, weak] {
                if (const auto core = weak.lock())
                    answered(ability);
            });
        });
}

void JumpRunner::Core::open(const Jump& jump) {
    if (jump.url && !jump.app)
        services.open({*jump.url}, jump.activation);
    else if (!jump.app)
        log(jump.id, "there is nothing to open");
    else if (!jump.url && jump.activation == Activation::background)
        openBehind(jump);
    else
        launch(jump, jump.activation);
}

/// Hands the link to the application; without one brings that forward, or starts it.
void JumpRunner::Core::launch(const Jump& jump, Activation activation) {
    const auto& app = *jump.app;
    auto told = [weak = weak_from_this(), id = jump.id, name = app.name](
                    const std::optional<std::string>& problem) {
        const auto core = weak.lock();
        if (core)
            --core->launching;
        if (core && problem)
            core->log(id, fmt::format("{} could not be opened: {}", name, *problem));
    };
    ++launching;
    if (jump.url)
        services.launcher.launch(app, {*jump.url}, std::move(told), activation);
    else if (activation == Activation::foreground)
        services.catalog.launch(app, std::move(told));
    else
        services.launcher.launch(app, {}, std::move(told), activation);
}

void JumpRunner::Core::openBehind(const Jump& jump) {
    if (jump.url || !bringBack(*jump.app))
        launch(jump, Activation::background);
}

/// Whether the desktop tells windows of it. Nothing of an application is on screen, and nothing in
/// it can be pressed, while all of them are minimised.
bool JumpRunner::Core::bringBack(const InstalledApp& app) {
    const auto running = services.running.running(app.bundleID);
    if (running && running->hidden == running->windows)
        services.running.unhide(*running);
    return running.has_value();
}

/// Opens it without bringing it forward, as far as that lies with us, and presses.
void JumpRunner::Core::pressIn(const Jump& jump) {
    const auto began = services.queue.uptime();
    ButtonPresses::Order order{.app = *jump.app,
                               .names = jump.names,
                               .waitForApp = waitForApp,
                               .waitPerName = waitPerName};
    if (jump.url) {
        launch(jump, Activation::background);
    } else {
        bringBack(*jump.app);
        order.start = [this, jump] { launch(jump, Activation::background); };
    }
    presses.press(std::move(order), [this, jump, began](const ButtonPresses::Result& result) {
        pressed(jump, result, services.queue.uptime() - began);
        done();
    });
}

void JumpRunner::Core::pressed(const Jump& jump,
                               const ButtonPresses::Result& result,
                               Seconds took) {
    if (jump.activation == Activation::foreground || result.missing)
        comeForward(jump, result);
    auto line = fmt::format("pressed {}", result.pressed.size());
    if (result.missing)
        line += fmt::format(
            " but could not find {} ({})", result.missing->name, result.missing->reason);
    line += fmt::format(" in {} ms", std::chrono::round<std::chrono::milliseconds>(took).count());
    if (result.missing)
        line += "; opening the app anyway";
    log(jump.id, line);
}

void JumpRunner::Core::comeForward(const Jump& jump, const ButtonPresses::Result& result) {
    const Jump plain{.id = jump.id, .app = jump.app};
    const bool isOpened = jump.url || result.started;
    if (services.running.running(jump.app->bundleID) || jump.app->busActivatable)
        launch(plain, Activation::foreground);
    // Where its windows can't be brought forward a second start may open another one: nobody wants
    // that who has just opened it, or whose buttons are pressed already.
    else if (result.missing && !isOpened)
        launch(plain, Activation::foreground);
    else if (!isOpened)
        log(jump.id, fmt::format("{} stays where it is: no window is told of it", jump.app->name));
}

void JumpRunner::Core::sayWhatIsMissing(const Jump& jump, const std::string& reason) {
    log(jump.id, fmt::format("{} ({})", needsPermission, reason));
    services.alerts.tell(
        std::string(needsPermission),
        fmt::format("On Linux that is the desktop's accessibility service, and {}. Install "
                    "at-spi2-core, then log out and in again so that its bus runs.",
                    reason));
}

JumpRunner::JumpRunner(Services services) : core_(std::make_shared<Core>(std::move(services))) {}

JumpRunner::~JumpRunner() = default;

void JumpRunner::run(const CommandSpec& command, const std::string& argument) {
    auto& core = *core_;
    requireMainThread(core.services.queue);
    const auto jump = core.jump(command, argument);
    if (jump.names.empty()) {
        core.open(jump);
        return;
    }
    const auto pressInAny = [&core, jump](std::optional<InstalledApp> app) {
        if (app) {
            auto found = jump;
            found.app = std::move(app);
            core.pressIn(found);
            return;
        }
        core.log(jump.id, "no app to press in; give the command a path");
        core.done();
    };
    core.take([&core, jump, pressInAny] {
        core.askWhetherTrusted([&core, jump, pressInAny](const Ability& ability) {
            if (!ability.available) {
                core.sayWhatIsMissing(jump, ability.reason);
                core.open(jump);
                core.done();
            } else if (jump.url && !jump.app) {
                core.whoOpens(*jump.url, pressInAny);
            } else {
                pressInAny(jump.app);
            }
        });
    });
}

void JumpRunner::probe(const std::string& bundleID,
                       const std::vector<std::string>& names,
                       std::function<void(std::string line)> told) {
    auto& core = *core_;
    requireMainThread(core.services.queue);
    const auto app =
        copyOf(core.registry().byID(bundleID)).value_or(InstalledApp{.bundleID = bundleID});
    const ButtonPresses::Order order{
        .app = app, .names = withoutEmpty(names), .waitPerName = waitPerName};
    const auto tell = [&core, told = std::move(told)](const std::string& line) {
        core.done();
        told(Printable::line(line)); // may well be the end of us
    };
    core.take([&core, order, bundleID, tell] {
        if (order.names.empty()) {
            tell("NOT PRESSED: no name was given");
            return;
        }
        core.askWhetherTrusted([&core, order, bundleID, tell](const Ability& ability) {
            if (!ability.available) {
                tell(fmt::format("NOT PRESSED: {} ({})", needsPermission, ability.reason));
                return;
            }
            core.presses.press(order, [bundleID, tell](const ButtonPresses::Result& result) {
                tell(result.ran ? probeLine(result) : fmt::format("{} is not running", bundleID));
            });
        });
    });
}

bool JumpRunner::isSettled() const {
    return core_->turns.empty() && core_->launching == 0;
}

} // namespace tessarine
