#include "launcherapp/platform/linux/system/files/UDisksEject.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/system/files/UDisksEjections.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QVariantMap>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using UDisksEjections::Ejection;
using UDisksEjections::Machine;
using UDisksEjections::Part;
using UDisksEjections::Plan;
using UDisksEjections::Step;
using UDisksTree::Tree;

constexpr auto service = "org.freedesktop.UDisks2";

/// An image goes by itself with its last mount when it was set up so (Autoclear), and somebody else
/// may have unmounted a file system since it was listed.
bool wasDone(const Step& step, const QString& error) {
    if (std::string_view(step.method) == "Unmount")
        return error == QStringLiteral("org.freedesktop.UDisks2.Error.NotMounted");
    return std::string_view(step.method) == "Delete" &&
           (error == QStringLiteral("org.freedesktop.DBus.Error.UnknownObject") ||
            error == QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod") ||
            error == QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface"));
}

/// All of a plan in turn; it lives as long as a step is under way.
class Ejecting : public std::enable_shared_from_this<Ejecting> {
public:
    Ejecting(EffectWays::Doors doors, QDBusConnection bus, EffectDone done)
        : doors_(std::move(doors)), bus_(std::move(bus)), done_(std::move(done)) {}

    void start(Plan plan) {
        plan_ = std::move(plan);
        problems_ = std::move(plan_.stays);
        next();
    }

private:
    const Ejection& ejection() const { return plan_.ejections[ejection_]; }

    const std::vector<Part>& parts() const {
        return isLeaving_ ? ejection().leave : ejection().release;
    }

    void next() {
        while (ejection_ < plan_.ejections.size()) {
            if (part_ == parts().size())
                endOfParts();
            else if (step_ == parts()[part_].steps.size())
                toNextPart();
            else
                return take(parts()[part_].steps[step_++]);
        }
        tell();
    }

    void endOfParts() {
        part_ = 0;
        if (!isLeaving_ && !hasFailed_) {
            isLeaving_ = true;
            return;
        }
        // The others of the device lose no power while one of it is in use.
        if (!isLeaving_ && ejection().release.size() > 1)
            problems_.emplace_back("what shares a device with it stays on");
        failed_ += hasFailed_ ? 1 : 0;
        isLeaving_ = false;
        hasFailed_ = false;
        ++ejection_;
    }

    void toNextPart() {
        ++part_;
        step_ = 0;
    }

    void take(const Step& step) {
        const auto path = step.path.toUtf8();
        auto message =
            BusTarget{service, path.constData(), step.interface}.call(step.method, {QVariantMap()});
        message.setInteractiveAuthorizationAllowed(true);
        askBus(bus_,
               message,
               doors_->patience.disk,
               [self = shared_from_this(), step](const QDBusMessage& reply) {
                   self->answered(step, reply);
               });
    }

    void answered(const Step& step, const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage && !wasDone(step, reply.errorName())) {
            hasFailed_ = true;
            problems_.push_back(fmt::format("“{}” could not be ejected: {}",
                                            parts()[part_].name,
                                            reply.errorMessage().isEmpty()
                                                ? reply.errorName().toStdString()
                                                : reply.errorMessage().toStdString()));
            toNextPart();
        }
        next();
    }

    void tell() {
        doors_->log(fmt::format("eject: {} device(s), {} failed{}{}",
                                plan_.ejections.size(),
                                failed_,
                                problems_.empty() ? "" : "; ",
                                fmt::join(problems_, "; ")));
        done_(problems_.empty() ? std::nullopt
                                : std::optional(fmt::format("{}", fmt::join(problems_, "; "))));
    }

    EffectWays::Doors doors_;
    QDBusConnection bus_;
    EffectDone done_;
    Plan plan_;
    std::size_t ejection_ = 0;
    std::size_t part_ = 0;
    std::size_t step_ = 0;   ///< the next one of the part
    bool isLeaving_ = false; ///< all of this one are released
    bool hasFailed_ = false; ///< some part of this one
    std::size_t failed_ = 0;
    std::vector<std::string> problems_;
};

/// Every folder that the session may be working in.
std::vector<std::string> sessionFolders(const Environment& environment) {
    std::vector<std::string> folders{
        environment.home, environment.dataHome, environment.configHome, environment.temporaryDir};
    if (environment.runtimeDir)
        folders.push_back(*environment.runtimeDir);
    std::erase(folders, "");
    return folders;
}

/// Asks the disk: on a thread of its own.
Machine machineOf(const Tree& tree,
                  std::vector<std::string> folders,
                  uid_t user,
                  const decltype(SystemDoors::blockHolders)& holders) {
    Machine machine{.user = user, .ownFolders = std::move(folders), .holders = {}};
    for (auto& folder : machine.ownFolders) {
        std::error_code error;
        const auto real = std::filesystem::weakly_canonical(folder, error);
        if (!error)
            folder = real.string();
    }
    for (const auto& block : tree.blocks)
        machine.holders.emplace(block.device, holders(block.device));
    return machine;
}

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
                   auto tree = UDisksTree::read(reply);
                   if (!tree)
                       return done("UDisks did not tell what drives there are: " +
                                   reply.errorMessage().toStdString());
                   doors->work.runApart(
                       [tree = *std::move(tree),
                        folders = sessionFolders(doors->environment),
                        user = doors->user,
                        holders = doors->blockHolders] {
                           return UDisksEjections::plan(tree,
                                                        machineOf(tree, folders, user, holders));
                       },
                       [doors, bus, done](Plan plan) {
                           std::make_shared<Ejecting>(doors, bus, done)->start(std::move(plan));
                       });
               });
    });
}

} // namespace tessarine
