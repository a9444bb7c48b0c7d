#pragma once

#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"
#include "launcherapp/platform/linux/pasteboard/x11/SelectionAtoms.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct xcb_property_notify_event_t;
struct xcb_selection_notify_event_t;

namespace tessarine {

class X11Connection;

/// One question at a time to whoever owns the clipboard, and its answer, in one property or in
/// increments (ICCCM 2.7.2). It is fed the display's events, waits for no other program, and trusts
/// none: it stops at the limit whatever size was announced. One thread; what is referred to must
/// outlive this.
class SelectionReading {
public:
    using Atom = SelectionAtoms::Atom;
    using Time = TransferClock::time_point;

    /// What an answer must hold to be taken for one.
    enum class Items { bytes, atoms };

    struct Question {
        Atom target = 0;
        Items items = Items::bytes;
        std::size_t limitBytes = 0;
        std::uint32_t timestamp = 0; ///< the display's time of the change that is asked about
    };

    SelectionReading(const X11Connection& display,
                     const SelectionAtoms& atoms,
                     TransferLimits limits);

    bool isUnderWay() const { return state_ != State::idle; }

    void ask(const Question& question, Time now);

    // Each gives the answer once it is whole, or why there is none; nothing before, and for what
    // isn't about this question.
    std::optional<PasteboardReading> answered(const xcb_selection_notify_event_t& event, Time now);
    std::optional<PasteboardReading> propertyChanged(const xcb_property_notify_event_t& event,
                                                     Time now);
    std::optional<PasteboardReading> expired(Time now);

    /// When `expired` has to be called; nothing while nothing is under way.
    std::optional<Time> deadline() const;

    /// Forgets the question; whatever still comes for it is ignored.
    void abandon();

private:
    enum class State { idle, waiting, increments };

    /// What the property held.
    enum class Taken { nothing, part, end, tooMuch, anotherForm };

    std::optional<PasteboardReading> beganIncrements();
    std::optional<PasteboardReading> finished(PasteboardReading::Outcome outcome);
    std::optional<PasteboardReading> failed(std::string problem);
    bool hasRightForm(std::uint32_t type, std::uint8_t format) const;
    Taken takeProperty();
    Taken copyProperty();
    void keep(const void* bytes, std::size_t count);
    void retireWindow();

    const X11Connection& display_;
    const SelectionAtoms& atoms_;
    TransferLimits limits_;
    State state_ = State::idle;
    Question question_;
    std::string bytes_;
    Time lastSign_;
    Time begun_;
    std::uint32_t window_ = 0; ///< none while the next question needs a new one
    std::vector<std::uint32_t> retired_;
};

} // namespace tessarine
