#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

struct wl_callback;
struct wl_seat;
struct zwlr_data_control_device_v1;
struct zwlr_data_control_manager_v1;
struct zwlr_data_control_offer_v1;
struct zwlr_data_control_source_v1;

namespace tessarine {

/// What a program has put on a seat's clipboard: the types are known before anything is asked for.
class DataOffer {
public:
    /// Far more than any program offers.
    static constexpr std::size_t mostTypes = 4096;

    /// Takes the proxy over.
    explicit DataOffer(zwlr_data_control_offer_v1* offer);
    ~DataOffer();
    DataOffer(const DataOffer&) = delete;
    DataOffer& operator=(const DataOffer&) = delete;

    /// In the owner's order, without repetitions and names that no type has. Null when there are
    /// more than `mostTypes`: which of them would mark a secret is not known then.
    const std::vector<std::string>* types() const { return isTooMuch_ ? nullptr : &types_; }

    bool has(const std::string& type) const;

    /// Has the owner write the content to the other end of this pipe's end, which stays the
    /// caller's.
    void receive(const std::string& type, int descriptor) const;

private:
    struct Listener;

    zwlr_data_control_offer_v1* offer_;
    std::vector<std::string> types_;
    bool isTooMuch_ = false;
};

/// The clipboard of the first seat of a Wayland compositor, as ext-data-control or, where that is
/// missing, wlr-data-control tells of it and hands it over to programs without the focus. The
/// primary selection is left alone. What is told is kept in the order in which it came, until it is
/// taken. The connection outlives this; the thread that dispatches it.
class DataControl {
public:
    /// Something else lies there, or nothing. The first such event after a seat was found tells
    /// what has been there before.
    struct Selected {
        std::unique_ptr<DataOffer> offer; ///< null when nothing lies there
    };

    /// A program wants that type of what we have put there. Nobody has to be told when it gets
    /// nothing.
    struct Wanted {
        std::uint64_t source = 0;
        std::string type;
        FileDescriptor into;
    };

    /// What we have put there has been replaced, was never taken, or went with its seat.
    struct Cancelled {
        std::uint64_t source = 0;
    };

    /// The compositor has done what was asked before, and has told what it brought about.
    struct Confirmed {
        std::uint64_t question = 0;
    };

    using Event = std::variant<Selected, Wanted, Cancelled, Confirmed>;

    static bool isOffered(const WaylandRegistry& registry);

    explicit DataControl(const WaylandConnection& connection);
    ~DataControl();
    DataControl(const DataControl&) = delete;
    DataControl& operator=(const DataControl&) = delete;

    /// Lets go of a seat that has gone, with all that we have put there, and takes one that has
    /// come. False while there is none, or when the compositor has no such protocol.
    bool hasSeat();

    /// Whether the compositor keeps the clipboard of a seat to itself that it has shown before.
    /// False again once another seat is there.
    bool isEnded() const { return isFinished_; }

    /// What has been told since the last time; nothing of a seat that was let go of but what has
    /// been cancelled.
    std::vector<Event> take();

    /// Puts something of these types there. Gives the number by which its events name it, never 0.
    std::uint64_t put(const std::vector<std::string>& types);

    /// Gives the number of the question that `Confirmed` answers, never 0.
    std::uint64_t confirm();

private:
    struct Listener;

    struct Source {
        DataControl& control;
        std::uint64_t number = 0;
        zwlr_data_control_source_v1* source = nullptr;
    };

    struct Question {
        DataControl& control;
        std::uint64_t number = 0;
        wl_callback* callback = nullptr;
    };

    void letGoOfSeat();

    const WaylandConnection& connection_;
    zwlr_data_control_manager_v1* manager_ = nullptr;
    wl_seat* seat_ = nullptr;
    std::uint32_t seatName_ = 0; ///< the compositor's number for it
    zwlr_data_control_device_v1* device_ = nullptr;
    bool isFinished_ = false; ///< the compositor has ended the seat's device
    std::map<zwlr_data_control_offer_v1*, std::unique_ptr<DataOffer>> offers_; ///< in no place yet
    std::map<std::uint64_t, std::unique_ptr<Source>> sources_;
    std::map<std::uint64_t, std::unique_ptr<Question>> questions_;
    std::uint64_t lastNumber_ = 0;
    std::vector<Event> events_;
};

} // namespace tessarine
