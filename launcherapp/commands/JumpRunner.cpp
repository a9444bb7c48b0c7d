#include "launcherapp/commands/JumpRunner.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
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

constexpr std::string_view needsPermission =
    "Tessarine needs Accessibility permission to press buttons in other apps";

/// Where a jump leads, as its command says.
struct Jump {
    std::string id;
    std::optional<std::string> url;
    std::optional<InstalledApp> app; ///< the one to press in
    std::vector<std::string> names;
    bool activate = true;
};

std::string withArgument(std::string text, const std::string& argument) {
    constexpr std::string_view placeholder = "{query}";
    const auto value = Urls::queryValue(argument);
    for (auto at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + value.size()))
        text.replace(at, placeholder.size(), value);
    return text;
}

std::string milliseconds(Seconds duration) {
    return fmt::format("{:.0f}", std::chrono::duration<double, std::milli>(duration).count());
}

std::string probeLine(const ButtonPresses::Result& result) {
    if (!result.missing)
        return fmt::format("PRESSED: {}", fmt::join(result.pressed, ", "));
    auto line = fmt::format("NOT PRESSED: could not find {} ({})", *result.missing, result.note);
    if (!result.pressed.empty())
        line += fmt::format("; pressed before: {}", fmt::join(result.pressed, ", "));
    return line;
}

} // namespace

struct JumpRunner::Parts : std::enable_shared_from_this<Parts> {
    explicit Parts(Services given)
        : services(std::move(given)), presses({.queue = services.queue,
                                               .work = services.work,
                                               .running = services.running,
                                               .windows = services.windows,
                                               .accessibility = services.accessibility}) {}

    void log(std::string_view id, std::string_view text) {
        services.diagnostics.log(fmt::format("jump {}: {}", id, text));
    }

    const AppRegistry& registry() const { return *services.catalog.registry(); }

    std::optional<InstalledApp> appAt(const std::string& path) const;
    std::optional<InstalledApp> appFor(const std::string& url) const;
    Jump jump(const CommandSpec& command, const std::string& argument) const;

    void take(std::function<void()> turn);
    void next();
    void done();
    void askWhetherTrusted(std::function<void(Ability)> answered);

    void open(const Jump& jump);
    void openBehind(const Jump& jump);
    void press(const Jump& jump);
    void pressed(const Jump& jump, const ButtonPresses::Result& result, Seconds took);
    void sayWhatIsMissing(const Jump& jump, const std::string& reason);

    Services services;
    ButtonPresses presses;
    std::deque<std::function<void()>> turns; ///< the first one is under way
};

/// A path names a desktop entry; anything else is taken for an application's id.
std::optional<InstalledApp> JumpRunner::Parts::appAt(const std::string& path) const {
    const auto url = services.resolve(path);
    const auto file = url ? Urls::filePath(*url) : std::nullopt;
    const auto* app = file ? registry().byPath(*file) : registry().byID(Folding::trimmed(path));
    return app ? std::optional(*app) : std::nullopt;
}

std::optional<InstalledApp> JumpRunner::Parts::appFor(const std::string& url) const {
    const InstalledApp* app = nullptr;
    if (const auto file = Urls::filePath(url)) {
        for (const auto& type : services.types.types(*file)) {
            if (!app)
                app = registry().handlerForType(type);
        }
    } else {
        app = registry().handlerForScheme(std::string_view(url).substr(0, url.find(':')));
    }
    return app ? std::optional(*app) : std::nullopt;
}

Jump JumpRunner::Parts::jump(const CommandSpec& command, const std::string& argument) const {
    Jump jump{.id = command.id, .activate = command.activate.value_or(true)};
    if (command.url)
        jump.url = services.resolve(withArgument(*command.url, argument));
    if (command.path)
        jump.app = appAt(*command.path);
    if (!jump.app && jump.url)
        jump.app = appFor(*jump.url);
    std::ranges::copy_if(command.press.value_or(std::vector<std::string>{}),
                         std::back_inserter(jump.names),
                         [](const std::string& name) { return !name.empty(); });
    return jump;
}

/// Turns come one after the other, since two jumps at once would press in each other's windows.
void JumpRunner::Parts::take(std::function<void()> turn) {
    turns.push_back(std::move(turn));
    if (turns.size() == 1)
        next();
}

void JumpRunner::Parts::next() {
    services.queue.post([weak = weak_from_this()] {
        const auto parts = weak.lock();
        if (!parts)
            return;
        const auto turn = parts->turns.front(); // it may end itself while it runs
        turn();
    });
}

void JumpRunner::Parts::done() {
    turns.pop_front();
    if (!turns.empty())
        next();
}

void JumpRunner::Parts::askWhetherTrusted(std::function<void(Ability)> answered) {
    services.work.serial(ButtonPresses::serialQueue)
        .submit([accessibility = services.accessibility,
                 answered = std::move(answered),
                 &queue = services.queue,
                 weak = weak_from_this()] {
            queue.post([ability = accessibility->ability(), answered, weak] {
                if (const auto parts = weak.lock())
                    answered(ability);
            });
        });
}

void JumpRunner::Parts::open(const Jump& jump) {
    if (jump.url)
        services.open({*jump.url},
                      jump.activate ? CommandRuntime::Activation::foreground
                                    : CommandRuntime::Activation::background);
    else if (jump.app && jump.activate)
        services.launch(*jump.app);
    else if (jump.app)
        openBehind(jump);
    else
        log(jump.id, "there is nothing to open");
}

/// Without bringing it forward, as far as that lies with us: an application that has to be started
/// comes to the front as the window manager has it.
void JumpRunner::Parts::openBehind(const Jump& jump) {
    if (jump.url) {
        services.open({*jump.url}, CommandRuntime::Activation::background);
        return;
    }
    const auto running = services.running.running(jump.app->bundleID);
    if (!running)
        services.launch(*jump.app);
    // Nothing of an application is on screen while all of its windows are minimised.
    else if (running->hidden == running->windows)
        services.running.unhide(*running);
}

void JumpRunner::Parts::press(const Jump& jump) {
    const auto began = services.queue.uptime();
    openBehind(jump);
    presses.press({.app = *jump.app,
                   .names = jump.names,
                   .waitForApp = waitForApp,
                   .waitPerName = waitPerName},
                  [this, jump, began](const ButtonPresses::Result& result) {
                      pressed(jump, result, services.queue.uptime() - began);
                      done();
                  });
}

void JumpRunner::Parts::pressed(const Jump& jump,
                                const ButtonPresses::Result& result,
                                Seconds took) {
    if (jump.activate || result.missing)
        services.launch(*jump.app);
    auto line = fmt::format("pressed {}", result.pressed.size());
    if (result.missing)
        line += fmt::format(" but could not find {} ({})", *result.missing, result.note);
    line += fmt::format(" in {} ms", milliseconds(took));
    if (result.missing)
        line += "; opening the app anyway";
    log(jump.id, line);
}

void JumpRunner::Parts::sayWhatIsMissing(const Jump& jump, const std::string& reason) {
    log(jump.id, fmt::format("{} ({})", needsPermission, reason));
    services.alerts.tell(
        std::string(needsPermission),
        fmt::format("On Linux that is the desktop's accessibility service, and {}. Install "
                    "at-spi2-core, then log out and in again so that its bus runs.",
                    reason));
}

JumpRunner::JumpRunner(Services services) : parts_(std::make_shared<Parts>(std::move(services))) {}

JumpRunner::~JumpRunner() = default;

void JumpRunner::run(const CommandSpec& command, const std::string& argument) {
    requireMainThread(parts_->services.queue);
    const auto jump = parts_->jump(command, argument);
    if (jump.names.empty()) {
        parts_->open(jump);
        return;
    }
    auto& parts = *parts_;
    parts.take([&parts, jump] {
        parts.askWhetherTrusted([&parts, jump](const Ability& ability) {
            if (ability.available && jump.app) {
                parts.press(jump);
                return;
            }
            if (ability.available) {
                parts.log(jump.id, "no app to press in; give the command a path");
            } else {
                parts.sayWhatIsMissing(jump, ability.reason);
                parts.open(jump);
            }
            parts.done();
        });
    });
}

void JumpRunner::probe(const std::string& bundleID,
                       const std::vector<std::string>& names,
                       std::function<void(std::string line)> told) {
    requireMainThread(parts_->services.queue);
    auto& parts = *parts_;
    const auto* app = parts.registry().byID(bundleID);
    ButtonPresses::Order order{.app = app ? *app : InstalledApp{.bundleID = bundleID},
                               .waitPerName = waitPerName};
    std::ranges::copy_if(names, std::back_inserter(order.names), [](const std::string& name) {
        return !name.empty();
    });
    const auto tell = [&parts, told = std::move(told)](std::string line) {
        parts.done();
        told(std::move(line)); // may well be the end of us
    };
    parts.take([&parts, order, bundleID, tell] {
        if (order.names.empty()) {
            tell("NOT PRESSED: no name was given");
            return;
        }
        parts.askWhetherTrusted([&parts, order, bundleID, tell](const Ability& ability) {
            if (!ability.available) {
                tell(fmt::format("NOT PRESSED: {} ({})", needsPermission, ability.reason));
                return;
            }
            parts.presses.press(order, [bundleID, tell](const ButtonPresses::Result& result) {
                tell(result.ran ? probeLine(result) : fmt::format("{} is not running", bundleID));
            });
        });
    });
}

} // namespace tessarine
