#include "launcherapp/platform/linux/system/files/UDisksEject.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QVariantMap>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using UDisksTree::Ejection;
using UDisksTree::Step;

constexpr auto service = "org.freedesktop.UDisks2";

/// All of the drives in turn; it lives as long as a step is under way.
class Ejecting : public std::enable_shared_from_this<Ejecting> {
public:
    Ejecting(EffectWays::Doors doors, QDBusConnection bus, EffectDone done)
        : doors_(std::move(doors)), bus_(std::move(bus)), done_(std::move(done)) {}

    void start(std::vector<Ejection> drives) {
        drives_ = std::move(drives);
        next();
    }

private:
    void next() {
        if (drive_ == drives_.size())
            return tell();
        if (step_ == drives_[drive_].steps.size())
            return leave();
        const auto& step = drives_[drive_].steps[step_++];
        const auto path = step.path.toUtf8();
        auto message =
            BusTarget{service, path.constData(), step.interface}.call(step.method, {QVariantMap()});
        message.setInteractiveAuthorizationAllowed(true);
        callBus(bus_,
                message,
                doors_->patience.disk,
                [self = shared_from_this()](std::optional<std::string> problem) {
                    self->answered(std::move(problem));
                });
    }

    void answered(std::optional<std::string> problem) {
        if (!problem)
            return next();
        problems_.push_back(
            fmt::format("“{}” could not be ejected: {}", drives_[drive_].name, *problem));
        leave();
    }

    /// To the next drive, whatever became of this one.
    void leave() {
        ++drive_;
        step_ = 0;
        next();
    }

    void tell() {
        doors_->log(fmt::format("eject: {} drive(s), {} failed", drives_.size(), problems_.size()));
        done_(problems_.empty() ? std::nullopt
                                : std::optional(fmt::format("{}", fmt::join(problems_, "; "))));
    }

    EffectWays::Doors doors_;
    QDBusConnection bus_;
    EffectDone done_;
    std::vector<Ejection> drives_;
    std::size_t drive_ = 0;
    std::size_t step_ = 0; ///< the next one
    std::vector<std::string> problems_;
};

} // namespace

Effect UDisksEject::ejectAll(const EffectContext& context) {
    if (!context.system || !context.facts.hasUDisks)
        return Effect::missing("there is no UDisks on this system");
    return Effect::by([doors = context.doors, bus = *context.system](EffectDone done) {
        constexpr BusTarget all{
            service, "/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager"};
        askBus(bus,
               all.call("GetManagedObjects"),
               doors->patience.act,
               [doors, bus, done = std::move(done)](const QDBusMessage& reply) {
                   const auto tree = UDisksTree::read(reply);
                   if (!tree)
                       done("UDisks did not tell what drives there are: " +
                            reply.errorMessage().toStdString());
                   else
                       std::make_shared<Ejecting>(doors, bus, done)
                           ->start(UDisksTree::ejections(*tree, doors->user));
               });
    });
}

} // namespace tessarine
