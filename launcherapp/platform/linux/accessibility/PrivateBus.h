#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

struct DBusConnection;
struct DBusMessage;

namespace tessarine {

/// An object that another program has on a bus.
struct BusPlace {
    std::string owner; ///< a bus name
    std::string path;

    auto operator<=>(const BusPlace&) const = default;
};

/// What an answer holds in its first value, a variant's own value where it is one. An answer of
/// another shape gives nothing, as no answer does.
class BusReply {
public:
    BusReply() = default; ///< no answer

    /// Takes over the reference.
    explicit BusReply(DBusMessage* message);

    /// Whether it is an answer and no error.
    bool succeeded() const;

    /// Whether anything came, an error too.
    bool came() const { return message_ != nullptr; }

    /// The name of the error that it is; nothing when it is none or didn't come.
    std::optional<std::string> error() const;

    /// What an error says of itself, or its name where it says nothing; empty when it is none.
    std::string errorText() const;

    std::optional<std::string> text() const;
    std::optional<std::int64_t> number() const; ///< of any integer type or boolean
    std::optional<BusPlace> place() const;
    std::vector<BusPlace> places() const;
    std::vector<std::uint32_t> numbers() const;
    std::vector<std::string> texts() const;

private:
    std::shared_ptr<DBusMessage> message_;
};

/// One call to one object.
struct BusCall {
    /// A boolean within a variant, as setting a property wants it.
    struct Flag {
        bool value = false;
    };

    using Argument = std::variant<std::string, std::int32_t, Flag>;

    BusPlace place;
    const char* interface = nullptr;
    const char* method = nullptr;
    std::vector<Argument> arguments;

    /// Reads one property.
    static BusCall property(BusPlace place, const char* interface, const char* name);
};

/// What another program, or the bus itself, sends here of its own accord: a call or a signal.
struct BusNews {
    std::string sender; ///< its unique name, or that of the bus
    std::string interface;
    std::string member;
    std::vector<std::string> texts; ///< the values that it begins with, as far as they are texts
};

/// A message bus on a connection of its own, which nothing else in the program uses or waits for:
/// whoever calls waits, and never beyond the moment given. Whoever would not wait sends, listens,
/// and takes what comes when the descriptor is readable. One thread at a time.
class PrivateBus {
public:
    using Clock = std::chrono::steady_clock;
    using Answered = std::function<void(const BusReply& reply)>;
    using Heard = std::function<void(const BusNews& news)>;

    /// Nothing when no bus answers there by then.
    static std::unique_ptr<PrivateBus> connect(const std::string& address,
                                               Clock::time_point deadline);

    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    bool isConnected() const;

    /// Sends all of them, then waits for all answers: in their order, and an empty one for what
    /// came too late, or couldn't be sent as it isn't UTF-8 or names no place. Calls sent together
    /// cost one round trip.
    std::vector<BusReply> call(std::span<const BusCall> calls, Clock::time_point deadline);
    BusReply call(const BusCall& call, Clock::time_point deadline);

    /// Waits for nothing. `answered` is called with what comes, however late, by `takeWhatCame` or
    /// a `call`; not at all once this has gone, or where it couldn't be sent.
    void send(const BusCall& call, Answered answered = {});

    /// Calls `heard`, as `send` does, with what the bus itself and the connection of the unique
    /// name `speaker` send here; their calls are answered with nothing, and others' with an error.
    /// To be called once.
    void listen(std::string speaker, Heard heard);

    /// Readable when something came. Of no use once the connection is lost.
    int descriptor() const;

    /// Waits for nothing.
    void takeWhatCame();

    /// Waits until something may be there to be taken; false when nothing is at that moment.
    bool wait(Clock::time_point deadline);

    /// The name by which others on the bus reach this connection.
    const std::string& name() const { return name_; }

private:
    explicit PrivateBus(DBusConnection* connection) : connection_(connection) {}

    struct Callbacks;

    DBusConnection* connection_;
    std::string name_;
    std::string speaker_; ///< whom it listens to beside the bus
    Heard heard_;
};

} // namespace tessarine
