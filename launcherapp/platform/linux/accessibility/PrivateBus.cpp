#include "launcherapp/platform/linux/accessibility/PrivateBus.h"

#include "launcherapp/platform/linux/desktop/SystemBus.h"

#include <dbus/dbus.h>

#include <QString>
#include <algorithm>
#include <poll.h>
#include <utility>

namespace tessarine {

namespace {

using std::chrono::milliseconds;

/// Turns in which is read what came. The library reads 2 to 4 KiB in one: this is some 10 MB, more
/// than any message that is expected, and whoever sends without end holds nobody up for good.
constexpr int mostTurns = 4096;

milliseconds remaining(PrivateBus::Clock::time_point deadline) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - PrivateBus::Clock::now());
    return std::max(left, milliseconds(0));
}

/// The value itself, where a property's answer has it within a variant.
DBusMessageIter unwrapped(DBusMessageIter value) {
    while (dbus_message_iter_get_arg_type(&value) == DBUS_TYPE_VARIANT) {
        DBusMessageIter inner;
        dbus_message_iter_recurse(&value, &inner);
        value = inner;
    }
    return value;
}

std::optional<std::string> textAt(DBusMessageIter* value) {
    const int type = dbus_message_iter_get_arg_type(value);
    if (type != DBUS_TYPE_STRING && type != DBUS_TYPE_OBJECT_PATH)
        return std::nullopt;
    const char* text = nullptr;
    dbus_message_iter_get_basic(value, &text);
    return text;
}

std::optional<std::int64_t> numberAt(DBusMessageIter* value) {
    DBusBasicValue number{};
    const int type = dbus_message_iter_get_arg_type(value);
    if (dbus_type_is_basic(type))
        dbus_message_iter_get_basic(value, &number);
    switch (type) {
    case DBUS_TYPE_BOOLEAN:
        return number.bool_val;
    case DBUS_TYPE_INT32:
        return number.i32;
    case DBUS_TYPE_UINT32:
        return number.u32;
    case DBUS_TYPE_INT64:
        return number.i64;
    case DBUS_TYPE_BYTE:
        return number.byt;
    default:
        return std::nullopt;
    }
}

std::optional<BusPlace> placeAt(DBusMessageIter* value) {
    if (dbus_message_iter_get_arg_type(value) != DBUS_TYPE_STRUCT)
        return std::nullopt;
    DBusMessageIter field;
    dbus_message_iter_recurse(value, &field);
    auto owner = textAt(&field);
    dbus_message_iter_next(&field);
    auto path = textAt(&field);
    if (!owner || !path)
        return std::nullopt;
    return BusPlace{.owner = *std::move(owner), .path = *std::move(path)};
}

/// What `read` gives of each element of a list; those it gives nothing of are left out.
template <typename Value>
std::vector<Value> listAt(DBusMessage* message,
                          std::optional<Value> (*read)(DBusMessageIter* value)) {
    std::vector<Value> values;
    DBusMessageIter first;
    if (!message || !dbus_message_iter_init(message, &first))
        return values;
    first = unwrapped(first);
    if (dbus_message_iter_get_arg_type(&first) != DBUS_TYPE_ARRAY)
        return values;
    DBusMessageIter element;
    dbus_message_iter_recurse(&first, &element);
    for (; dbus_message_iter_get_arg_type(&element) != DBUS_TYPE_INVALID;
         dbus_message_iter_next(&element)) {
        if (auto value = read(&element))
            values.push_back(*std::move(value));
    }
    return values;
}

template <typename Value>
std::optional<Value> firstOf(DBusMessage* message,
                             std::optional<Value> (*read)(DBusMessageIter* value)) {
    DBusMessageIter first;
    if (!message || dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_RETURN ||
        !dbus_message_iter_init(message, &first))
        return std::nullopt;
    first = unwrapped(first);
    return read(&first);
}

void append(DBusMessageIter& values, const BusCall::Argument& argument) {
    if (const auto* text = std::get_if<std::string>(&argument)) {
        const char* bytes = text->c_str();
        dbus_message_iter_append_basic(&values, DBUS_TYPE_STRING, &bytes);
    } else if (const auto* number = std::get_if<std::int32_t>(&argument)) {
        dbus_message_iter_append_basic(&values, DBUS_TYPE_INT32, number);
    } else {
        const dbus_bool_t flag = std::get<BusCall::Flag>(argument).value;
        DBusMessageIter inner;
        dbus_message_iter_open_container(&values, DBUS_TYPE_VARIANT, "b", &inner);
        dbus_message_iter_append_basic(&inner, DBUS_TYPE_BOOLEAN, &flag);
        dbus_message_iter_close_container(&values, &inner);
    }
}

/// The library ends a program that gives it a text of another kind.
bool isSendable(const BusCall::Argument& argument) {
    const auto* const text = std::get_if<std::string>(&argument);
    return !text || dbus_validate_utf8(text->c_str(), nullptr);
}

/// Null when what another program gave us as its name is none that a call can be sent to, or a text
/// isn't UTF-8.
DBusMessage* messageFor(const BusCall& call) {
    if (!dbus_validate_bus_name(call.place.owner.c_str(), nullptr) ||
        !dbus_validate_path(call.place.path.c_str(), nullptr) ||
        !std::ranges::all_of(call.arguments, isSendable))
        return nullptr;
    auto* message = dbus_message_new_method_call(
        call.place.owner.c_str(), call.place.path.c_str(), call.interface, call.method);
    DBusMessageIter values;
    dbus_message_iter_init_append(message, &values);
    for (const auto& argument : call.arguments)
        append(values, argument);
    return message;
}

/// The values that a message begins with, as far as they are texts.
std::vector<std::string> textsAtBeginning(DBusMessage* message) {
    std::vector<std::string> texts;
    DBusMessageIter value;
    if (!dbus_message_iter_init(message, &value))
        return texts;
    while (auto text = textAt(&value)) {
        texts.push_back(*std::move(text));
        dbus_message_iter_next(&value);
    }
    return texts;
}

/// None where the message has none.
std::string orEmpty(const char* text) {
    return text ? text : "";
}

} // namespace

/// What the library calls.
struct PrivateBus::Callbacks {
    static void answered(DBusPendingCall* pending, void* data) {
        (*static_cast<const Answered*>(data))(BusReply(dbus_pending_call_steal_reply(pending)));
    }

    static void release(void* data) { delete static_cast<Answered*>(data); }

    static DBusHandlerResult came(DBusConnection* connection, DBusMessage* message, void* data) {
        const int type = dbus_message_get_type(message);
        auto& bus = *static_cast<PrivateBus*>(data);
        const auto sender = orEmpty(dbus_message_get_sender(message));
        const bool isHeard = sender == bus.speaker_ || sender == DBUS_SERVICE_DBUS;
        // The library answers what nobody handles: a call with an error.
        if (!isHeard || (type != DBUS_MESSAGE_TYPE_METHOD_CALL && type != DBUS_MESSAGE_TYPE_SIGNAL))
            return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
        if (type == DBUS_MESSAGE_TYPE_METHOD_CALL && !dbus_message_get_no_reply(message)) {
            auto* const reply = dbus_message_new_method_return(message);
            dbus_connection_send(connection, reply, nullptr);
            dbus_message_unref(reply);
        }
        bus.heard_({.sender = sender,
                    .interface = orEmpty(dbus_message_get_interface(message)),
                    .member = orEmpty(dbus_message_get_member(message)),
                    .texts = textsAtBeginning(message)});
        return DBUS_HANDLER_RESULT_HANDLED;
    }
};

BusReply::BusReply(DBusMessage* message) : message_(message, dbus_message_unref) {}

bool BusReply::succeeded() const {
    return message_ && dbus_message_get_type(message_.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
}

std::optional<std::string> BusReply::error() const {
    const char* name = message_ ? dbus_message_get_error_name(message_.get()) : nullptr;
    return name ? std::optional<std::string>(name) : std::nullopt;
}

std::string BusReply::errorText() const {
    const auto name = error();
    if (!name)
        return {};
    DBusMessageIter first;
    if (dbus_message_iter_init(message_.get(), &first)) {
        if (auto text = textAt(&first); text && !text->empty())
            return *std::move(text);
    }
    return *name;
}

std::optional<std::string> BusReply::text() const {
    return firstOf(message_.get(), textAt);
}

std::optional<std::int64_t> BusReply::number() const {
    return firstOf(message_.get(), numberAt);
}

std::optional<BusPlace> BusReply::place() const {
    return firstOf(message_.get(), placeAt);
}

std::vector<BusPlace> BusReply::places() const {
    return listAt(message_.get(), placeAt);
}

std::vector<std::uint32_t> BusReply::numbers() const {
    const auto numbers = listAt(message_.get(), numberAt);
    return {numbers.begin(), numbers.end()};
}

std::vector<std::string> BusReply::texts() const {
    return listAt(message_.get(), textAt);
}

BusCall BusCall::property(BusPlace place, const char* interface, const char* name) {
    return {.place = std::move(place),
            .interface = DBUS_INTERFACE_PROPERTIES,
            .method = "Get",
            .arguments = {std::string(interface), std::string(name)}};
}

std::unique_ptr<PrivateBus> PrivateBus::connect(const std::string& address,
                                                Clock::time_point deadline) {
    // The library would wait for good for a bus that takes no more connections.
    if (!busAnswers(QString::fromStdString(address), remaining(deadline)))
        return nullptr;
    auto* connection = dbus_connection_open_private(address.c_str(), nullptr);
    if (!connection)
        return nullptr;
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    std::unique_ptr<PrivateBus> bus(new PrivateBus(connection));
    const BusCall hello{.place = {.owner = DBUS_SERVICE_DBUS, .path = DBUS_PATH_DBUS},
                        .interface = DBUS_INTERFACE_DBUS,
                        .method = "Hello"};
    auto name = bus->call(hello, deadline).text();
    if (!name)
        return nullptr;
    bus->name_ = *std::move(name);
    return bus;
}

PrivateBus::~PrivateBus() {
    if (heard_)
        dbus_connection_remove_filter(connection_, &Callbacks::came, this);
    dbus_connection_close(connection_);
    dbus_connection_unref(connection_);
}

bool PrivateBus::isConnected() const {
    return dbus_connection_get_is_connected(connection_);
}

std::vector<BusReply> PrivateBus::call(std::span<const BusCall> calls, Clock::time_point deadline) {
    std::vector<DBusPendingCall*> pending(calls.size(), nullptr);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        auto* message = messageFor(calls[i]);
        if (!message)
            continue;
        // Our own deadline is for all of them together; the library's would be one after another.
        dbus_connection_send_with_reply(connection_, message, &pending[i], DBUS_TIMEOUT_INFINITE);
        dbus_message_unref(message);
    }
    std::vector<BusReply> replies(calls.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (!pending[i])
            continue;
        while (!dbus_pending_call_get_completed(pending[i]) && remaining(deadline).count() > 0 &&
               dbus_connection_read_write_dispatch(connection_,
                                                   static_cast<int>(remaining(deadline).count()))) {
        }
        if (dbus_pending_call_get_completed(pending[i]))
            replies[i] = BusReply(dbus_pending_call_steal_reply(pending[i]));
        else
            dbus_pending_call_cancel(pending[i]);
        dbus_pending_call_unref(pending[i]);
    }
    return replies;
}

BusReply PrivateBus::call(const BusCall& call, Clock::time_point deadline) {
    return this->call(std::span(&call, 1), deadline).front();
}

void PrivateBus::send(const BusCall& call, Answered answered) {
    auto* const message = messageFor(call);
    if (!message)
        return;
    if (!answered) {
        dbus_message_set_no_reply(message, TRUE);
        dbus_connection_send(connection_, message, nullptr);
        dbus_message_unref(message);
        return;
    }
    DBusPendingCall* pending = nullptr;
    dbus_connection_send_with_reply(connection_, message, &pending, DBUS_TIMEOUT_INFINITE);
    dbus_message_unref(message);
    if (!pending) // the connection is lost
        return;
    dbus_pending_call_set_notify(pending,
                                 &Callbacks::answered,
                                 std::make_unique<Answered>(std::move(answered)).release(),
                                 &Callbacks::release);
    dbus_pending_call_unref(pending);
}

void PrivateBus::listen(std::string speaker, Heard heard) {
    speaker_ = std::move(speaker);
    heard_ = std::move(heard);
    dbus_connection_add_filter(connection_, &Callbacks::came, this, nullptr);
}

int PrivateBus::descriptor() const {
    int descriptor = -1;
    dbus_connection_get_unix_fd(connection_, &descriptor);
    return descriptor;
}

void PrivateBus::takeWhatCame() {
    const auto isReadable = [this] {
        pollfd socket{.fd = descriptor(), .events = POLLIN, .revents = 0};
        return isConnected() && ::poll(&socket, 1, 0) == 1;
    };
    int turns = 0;
    do {
        dbus_connection_read_write(connection_, 0);
        while (dbus_connection_dispatch(connection_) == DBUS_DISPATCH_DATA_REMAINS) {
        }
    } while (++turns < mostTurns && isReadable());
}

bool PrivateBus::wait(Clock::time_point deadline) {
    const auto isThere = [this] {
        return dbus_connection_get_dispatch_status(connection_) == DBUS_DISPATCH_DATA_REMAINS;
    };
    while (!isThere() && isConnected() && remaining(deadline).count() > 0)
        dbus_connection_read_write(connection_, static_cast<int>(remaining(deadline).count()));
    return isThere();
}

} // namespace tessarine
