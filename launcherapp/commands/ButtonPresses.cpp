#include "launcherapp/commands/ButtonPresses.h"

#include "LauncherCore/catalog/ExecLine.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/platform/Accessibility.h"
#include "launcherapp/platform/WindowList.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <set>
#include <utility>

namespace tessarine {

namespace {

/// Toolkits tell a program's own name, its id or the name of its file, each as it likes.
std::set<std::string> namesOf(const InstalledApp& app) {
    std::set<std::string> names{
        app.name, app.bundleID, app.bundleID.substr(app.bundleID.rfind('.') + 1), app.windowClass};
    if (const auto words = ExecLine::words(app.exec))
        names.emplace(Paths::lastPart(words->front()));
    names.erase("");
    return names;
}

} // namespace

/// One order under way. What it has posted holds it weakly, so that nothing comes of it once its
/// owner has let it go.
class ButtonPresses::Run : public std::enable_shared_from_this<Run> {
public:
    Run(const Services& services, Order order, std::function<void(Result)> done)
        : services_(services), order_(std::move(order)), done_(std::move(done)),
          began_(services.queue.uptime()), names_(namesOf(order_.app)) {}

    void begin() {
        // Asked first, since most toolkits tell nothing until then.
        onSerialQueue([](Accessibility& accessibility) { return accessibility.wake(); },
                      [](Run& run, Accessibility::Before before) {
                          if (before == Accessibility::Before::silent && !run.programWithWindows())
                              run.after(timeToSpeak, &Run::waitForApp);
                          else
                              run.waitForApp();
                      });
    }

    bool isOver() const { return isOver_; }

private:
    /// Runs `job(accessibility)` on the serial queue and then `back(run, value)` on the main one.
    template <typename Job, typename Back> void onSerialQueue(Job job, Back back) {
        services_.work.serial(serialQueue)
            .submit([job = std::move(job),
                     back = std::move(back),
                     accessibility = services_.accessibility,
                     &queue = services_.queue,
                     weak = weak_from_this()] {
                auto value = job(*accessibility);
                queue.post([back, weak, value = std::move(value)] {
                    if (const auto run = weak.lock())
                        back(*run, value);
                });
            });
    }

    void after(Seconds delay, void (Run::*step)()) {
        services_.queue.postAfter(delay, [step, weak = weak_from_this()] {
            if (const auto run = weak.lock())
                ((*run).*step)();
        });
    }

    /// Nothing while no window of the application is there.
    std::optional<AccessibleProgram> programWithWindows() const {
        const auto app = services_.running.running(order_.app.bundleID);
        if (!app)
            return std::nullopt;
        AccessibleProgram program{.names = names_};
        for (const auto& window : services_.windows.windows()) {
            if (window.processID > 0 && std::ranges::count(app->windows, window.id) > 0)
                program.processIDs.insert(window.processID);
        }
        return program;
    }

    void waitForApp() {
        if (programWithWindows()) {
            nextName();
            return;
        }
        onSerialQueue([program = AccessibleProgram{.names = names_}](
                          Accessibility& accessibility) { return accessibility.runs(program); },
                      [](Run& run, bool runs) { runs ? run.nextName() : run.appIsMissing(); });
    }

    void appIsMissing() {
        if (order_.start && !result_.started) {
            result_.started = true;
            began_ = services_.queue.uptime();
            order_.start();
        }
        if (services_.queue.uptime() - began_ < order_.waitForApp) {
            after(appCheck, &Run::waitForApp);
            return;
        }
        result_.ran = false;
        stop(fmt::format("{} is not running", order_.app.name));
    }

    void nextName() {
        nameEnds_ = services_.queue.uptime() + order_.waitPerName;
        attempt();
    }

    void attempt() {
        // The processes are asked for anew each time: a splash screen may be another's.
        auto program = programWithWindows();
        if (!program && result_.started && result_.pressed.empty()) {
            // Nor does one count as being there whose splash screen alone has spoken so far.
            nameEnds_ = std::max(nameEnds_, began_ + order_.waitForApp);
        }
        onSerialQueue(
            [program = std::move(program).value_or(AccessibleProgram{.names = names_}),
             name = name()](Accessibility& accessibility) {
                return accessibility.press(program, name);
            },
            [](Run& run, const PressAttempt& attempt) { run.attempted(attempt); });
    }

    void attempted(const PressAttempt& attempt) {
        switch (attempt.outcome) {
        case PressAttempt::Outcome::pressed:
            result_.pressed.push_back(name());
            if (result_.pressed.size() == order_.names.size())
                finish();
            else
                after(pause, &Run::nextName);
            return;
        case PressAttempt::Outcome::refused:
            stop(fmt::format("the press was refused (AX error {})", attempt.problem));
            return;
        case PressAttempt::Outcome::notFound:
            if (services_.queue.uptime() < nameEnds_)
                after(retry, &Run::attempt);
            else
                stop(fmt::format("nothing named that was on screen within {:.1f} s",
                                 order_.waitPerName.count()));
            return;
        }
    }

    const std::string& name() const { return order_.names[result_.pressed.size()]; }

    void stop(std::string reason) {
        result_.missing = Missing{.name = name(), .reason = std::move(reason)};
        finish();
    }

    void finish() {
        isOver_ = true;
        done_(std::move(result_));
    }

    Services services_;
    Order order_;
    std::function<void(Result)> done_;
    Seconds began_;
    std::set<std::string> names_;
    Seconds nameEnds_{0};
    Result result_;
    bool isOver_ = false;
};

ButtonPresses::ButtonPresses(Services services) : services_(std::move(services)) {}

ButtonPresses::~ButtonPresses() = default;

void ButtonPresses::press(Order order, std::function<void(Result result)> done) {
    requireMainThread(services_.queue);
    assert(!run_ || run_->isOver());
    run_ = std::make_shared<Run>(services_, std::move(order), std::move(done));
    services_.queue.post([weak = std::weak_ptr(run_)] {
        if (const auto run = weak.lock())
            run->begin();
    });
}

} // namespace tessarine
