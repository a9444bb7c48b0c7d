#include "launcherapp/platform/linux/wayland/windows/kwin/KWinScripts.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/ForeignJson.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/wayland/windows/kwin/KWinProgram.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <QTimer>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr auto kwin = "org.kde.KWin";
constexpr auto scripting = "org.kde.kwin.Scripting";
/// Bytes of the longest text that is read: a scene of ten thousand windows has about 4 million.
constexpr std::size_t longest = 8U << 20U;
constexpr std::string_view suffix = ".js";

const BusPlace theBus{.owner = "org.freedesktop.DBus", .path = "/org/freedesktop/DBus"};

BusCall busCall(const char* method, std::vector<BusCall::Argument> arguments = {}) {
    return {.place = theBus,
            .interface = "org.freedesktop.DBus",
            .method = method,
            .arguments = std::move(arguments)};
}

BusCall
scriptingCall(std::string owner, const char* method, std::vector<BusCall::Argument> arguments) {
    return {.place = {.owner = std::move(owner), .path = "/Scripting"},
            .interface = scripting,
            .method = method,
            .arguments = std::move(arguments)};
}

/// False when it can't be written whole.
bool write(const std::string& path, std::string_view text) {
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    while (file.number() >= 0 && !text.empty()) {
        const auto written = ::write(file.number(), text.data(), text.size());
        if (written <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return file.number() >= 0;
}

void remove(const std::string& path) {
    std::error_code ignored; // it is looked for again at the next start
    fs::remove(path, ignored);
}

/// That of this user's session; nothing where there is none, or its name can't be told on a bus.
std::optional<std::string> runtimeFolder() {
    auto folder = qgetenv("XDG_RUNTIME_DIR").toStdString();
    std::error_code error;
    if (!Folding::isUtf8(folder) || !fs::is_directory(folder, error))
        return std::nullopt;
    return folder;
}

/// Not a folder of this run: what lies there tells the next run what is still loaded. Where it
/// can't be made the first script says so.
std::string madeScriptFolder(const std::string& runtimeFolder) {
    const auto own = runtimeFolder + "/tessarine";
    auto folder = own + "/kwin";
    for (const auto& each : {own, folder})
        ::mkdir(each.c_str(), S_IRWXU);
    return folder;
}

/// KWin on a connection to the bus; nothing where it isn't or takes no scripts.
struct Found {
    std::unique_ptr<PrivateBus> bus;
    std::string busId; ///< another one for each run of a bus
    std::string owner;
    std::string runtimeFolder;
};

std::optional<Found> find(PrivateBus::Clock::time_point deadline) {
    const auto address = sessionBusAddress();
    auto folder = runtimeFolder();
    auto bus = address && folder ? PrivateBus::connect(*address, deadline) : nullptr;
    if (!bus)
        return std::nullopt;
    const std::array calls{busCall("GetId"), busCall("GetNameOwner", {std::string(kwin)})};
    const auto told = bus->call(calls, deadline);
    auto busId = told[0].text();
    auto owner = told[1].text();
    if (!busId || !owner)
        return std::nullopt;
    const auto answer =
        bus->call(scriptingCall(*owner, "isScriptLoaded", {std::string("none")}), deadline);
    if (answer.came() && !answer.succeeded())
        return std::nullopt;
    return Found{.bus = std::move(bus),
                 .busId = *std::move(busId),
                 .owner = *std::move(owner),
                 .runtimeFolder = *std::move(folder)};
}

std::string beginningOnBus(std::string_view busId) {
    return fmt::format("tessarine-{}", busId);
}

} // namespace

bool KWinScripts::areTaken(Clock::time_point deadline) {
    return find(deadline).has_value();
}

std::unique_ptr<KWinScripts> KWinScripts::connect(Clock::time_point deadline) {
    auto found = find(deadline);
    if (!found)
        return nullptr;
    return std::unique_ptr<KWinScripts>(new KWinScripts(std::move(found->bus),
                                                        beginningOnBus(found->busId),
                                                        std::move(found->owner),
                                                        madeScriptFolder(found->runtimeFolder)));
}

KWinScripts::KWinScripts(std::unique_ptr<PrivateBus> bus,
                         std::string beginning,
                         std::string owner,
                         std::string folder)
    : bus_(std::move(bus)), beginning_(std::move(beginning)), owner_(std::move(owner)),
      folder_(std::move(folder)) {
    bus_->listen(owner_, [this](const BusNews& news) { hear(news); });
    bus_->send(busCall("AddMatch",
                       {fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                    "member='NameOwnerChanged',arg0='{}'",
                                    owner_)}));
    // It may have left before that was heard.
    bus_->send(busCall("NameHasOwner", {owner_}),
               [this](const BusReply& reply) { isLost_ = isLost_ || reply.number() == 0; });
    unloadLeftovers();
}

KWinScripts::~KWinScripts() {
    for (const auto& [number, script] : scripts_)
        unload(name(number));
}

BusCall KWinScripts::call(const char* method, std::vector<BusCall::Argument> arguments) const {
    return scriptingCall(owner_, method, std::move(arguments));
}

/// Who has loaded it stands in it.
std::string KWinScripts::name(std::uint64_t script) const {
    return fmt::format("{}{}-{}", beginning_, bus_->name(), script);
}

std::string KWinScripts::file(const std::string& name) const {
    return fmt::format("{}/{}{}", folder_, name, suffix);
}

std::uint64_t KWinScripts::start(Work work, Told told) {
    const auto number = ++last_;
    const auto ownName = name(number);
    const auto text = KWinProgram::text({.listener = bus_->name(),
                                         .script = ownName,
                                         .orders = std::move(work.orders),
                                         .follows = work.follows});
    if (!write(file(ownName), text)) {
        const std::string why = std::strerror(errno);
        remove(file(ownName)); // a part of it
        throw std::runtime_error("the script for KWin can't be written to " + folder_ + ": " + why);
    }
    scripts_.emplace(number, Script{.told = std::move(told)});
    // KWin 5 numbers scripts by how many there are, so a number may be that of another one still.
    const auto taken = std::make_shared<std::string>();
    for (const auto* path : {"/", "/Scripting"})
        bus_->send({.place = {.owner = owner_, .path = path},
                    .interface = "org.freedesktop.DBus.Introspectable",
                    .method = "Introspect"},
                   [taken](const BusReply& reply) { *taken += reply.text().value_or(""); });
    bus_->send(call("loadScript", {file(ownName), ownName}),
               [this, number, taken](const BusReply& reply) {
                   const auto object = reply.number();
                   if (!object || *object < 0)
                       fail(number);
                   else
                       runObject(number, static_cast<std::uint64_t>(*object), *taken);
               });
    return number;
}

/// `taken` tells of the objects that were there before.
void KWinScripts::runObject(std::uint64_t script, std::uint64_t object, const std::string& taken) {
    const auto old = std::to_string(object);
    const auto name = "Script" + old;
    const auto isTaken = [&](const std::string& node) {
        return taken.find(fmt::format("name=\"{}\"", node)) != std::string::npos;
    };
    if (isTaken(old) || isTaken(name))
        // It is without an object. This runs whatever doesn't run yet.
        tryWays(script, {call("start", {})});
    else // where KWin 6 has it, and where KWin 5 has
        tryWays(script, {runCall("/Scripting/" + name), runCall("/" + old)});
}

BusCall KWinScripts::runCall(std::string path) const {
    return {.place = {.owner = owner_, .path = std::move(path)},
            .interface = "org.kde.kwin.Script",
            .method = "run"};
}

/// The first of these ways that KWin knows.
void KWinScripts::tryWays(std::uint64_t script, std::vector<BusCall> ways) {
    if (ways.empty())
        return fail(script);
    const auto way = std::move(ways.front());
    ways.erase(ways.begin());
    bus_->send(way, [this, script, ways](const BusReply& reply) {
        if (reply.succeeded())
            watch(script);
        else
            tryWays(script, ways);
    });
}

void KWinScripts::watch(std::uint64_t script) {
    QTimer::singleShot(silence, &context_, [this, script] {
        const auto found = scripts_.find(script);
        if (found != scripts_.end() && !found->second.hasTold)
            fail(script);
    });
}

void KWinScripts::fail(std::uint64_t script) {
    const auto found = scripts_.find(script);
    if (found == scripts_.end())
        return;
    const auto told = std::move(found->second.told);
    end(script);
    told(nullptr);
}

void KWinScripts::end(std::uint64_t script) {
    if (scripts_.erase(script) > 0)
        unload(name(script));
}

void KWinScripts::unload(const std::string& name) {
    bus_->send(call("unloadScript", {name}));
    remove(file(name));
}

void KWinScripts::hear(const BusNews& news) {
    if (news.sender == theBus.owner && news.member == "NameOwnerChanged") {
        isLost_ = true; // a unique name changes its owner once
        return;
    }
    if (news.sender != owner_ || news.interface != KWinProgram::interface ||
        news.member != KWinProgram::member || news.texts.size() != 2)
        return;
    for (auto& [number, script] : scripts_) {
        if (news.texts[0] != name(number))
            continue;
        auto message = news.texts[1].size() <= longest ? ForeignJson::read(news.texts[1]) : Json();
        script.hasTold = true;
        const auto told = script.told; // it may end the script
        return told(&message);
    }
}

/// What of this bus's other connections is still in KWin although they have ended. Another bus has
/// another KWin, and connections of the same names.
void KWinScripts::unloadLeftovers() {
    std::error_code error;
    for (fs::directory_iterator entry(folder_, error), end; !error && entry != end;
         entry.increment(error)) {
        const auto name = entry->path().stem().string();
        const auto dash = name.rfind('-');
        if (entry->path().extension() != suffix || !name.starts_with(beginning_) ||
            dash == std::string::npos || dash < beginning_.size())
            continue;
        auto loader = name.substr(beginning_.size(), dash - beginning_.size());
        if (loader == bus_->name()) { // nothing has been started yet
            unload(name);
            continue;
        }
        bus_->send(busCall("NameHasOwner", {std::move(loader)}),
                   [this, name](const BusReply& reply) {
                       if (reply.succeeded() && reply.number() == 0)
                           unload(name);
                   });
    }
}

} // namespace tessarine
