#include "tests/desktop/mutter/MutterKeyboard.h"

#include "launcherapp/platform/linux/wayland/WaylandConnection.h"
#include "tests/desktop/Program.h"
#include "tests/wayland/TestKeys.h"

#include <linux/input-event-codes.h>
#include <wayland-client.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <chrono>
#include <stdexcept>
#include <vector>

namespace tessarine {

namespace {

using namespace std::chrono_literals;

QString name(const char* rest = "") {
    return QStringLiteral("org.gnome.Mutter.RemoteDesktop") + QLatin1String(rest);
}

QDBusMessage answer(const QString& path,
                    const QString& interface,
                    const char* method,
                    const QVariantList& arguments = {}) {
    auto call =
        QDBusMessage::createMethodCall(name(), path, interface, QString::fromLatin1(method));
    call.setArguments(arguments);
    const auto reply = QDBusConnection::sessionBus().call(call);
    if (reply.type() != QDBusMessage::ReplyMessage)
        throw std::runtime_error(reply.errorMessage().toStdString());
    return reply;
}

void noteCapabilities(void* data, wl_seat*, std::uint32_t capabilities) {
    *static_cast<std::uint32_t*>(data) = capabilities;
}

constexpr wl_seat_listener seatListener{.capabilities = noteCapabilities, .name = nullptr};

/// Windows bind the seat's keyboard once the seat has one, and miss what was pressed before.
bool seatGetsKeyboard() {
    WaylandConnection connection;
    std::uint32_t capabilities = 0;
    auto* const seat = connection.registry().bindFirst<wl_seat>(wl_seat_interface, 1);
    if (!seat)
        return false;
    wl_seat_add_listener(seat, &seatListener, &capabilities);
    const bool has = waitUntil(10s, [&] {
        return connection.roundTrip() && (capabilities & WL_SEAT_CAPABILITY_KEYBOARD);
    });
    wl_seat_destroy(seat);
    return has;
}

} // namespace

struct MutterKeyboard::Parts {
    void set(std::uint32_t key, bool isDown) const {
        answer(session, name(".Session"), "NotifyKeyboardKeycode", {key, isDown});
    }

    QString session =
        answer(QStringLiteral("/org/gnome/Mutter/RemoteDesktop"), name(), "CreateSession")
            .arguments()
            .value(0)
            .value<QDBusObjectPath>()
            .path();
};

MutterKeyboard::MutterKeyboard() : parts_(std::make_unique<Parts>()) {
    answer(parts_->session, name(".Session"), "Start");
    press({KEY_LEFTSHIFT}); // it is made for the first key
    if (!seatGetsKeyboard())
        throw std::runtime_error("the compositor has no keyboard");
}

MutterKeyboard::~MutterKeyboard() {
    try {
        answer(parts_->session, name(".Session"), "Stop");
    } catch (const std::runtime_error&) {
        // The compositor has ended, and the keyboard with it.
    }
}

void MutterKeyboard::press(std::initializer_list<std::uint32_t> keys) {
    const std::vector<std::uint32_t> inOrder(keys);
    for (const auto key : inOrder)
        parts_->set(key, true);
    for (auto key = inOrder.rbegin(); key != inOrder.rend(); ++key)
        parts_->set(*key, false);
}

void MutterKeyboard::type(const std::string& text) {
    for (const char each : text)
        press({keyOf(each)});
}

} // namespace tessarine
