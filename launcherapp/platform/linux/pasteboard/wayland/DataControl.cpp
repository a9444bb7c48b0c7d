#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"

#include "launcherapp/platform/linux/pasteboard/OfferedTypes.h"

#include <ext-data-control-v1.h>
#include <wayland-client.h>
#include <wlr-data-control-unstable-v1.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// Of wlr-data-control the first version does: the second tells of the primary selection as well,
/// which would wake us at every word that is marked.
constexpr std::uint32_t withoutPrimary = 1;

// The heir has the same requests and events with the same numbers and arguments; only the names of
// the interfaces differ, which the compositor hears when the manager is bound and never again. So
// the one is spoken to with the code of the other.
zwlr_data_control_manager_v1* bindManager(const WaylandRegistry& registry) {
    if (auto* const heir = registry.bindFirst<zwlr_data_control_manager_v1>(
            ext_data_control_manager_v1_interface, 1))
        return heir;
    return registry.bindFirst<zwlr_data_control_manager_v1>(zwlr_data_control_manager_v1_interface,
                                                            withoutPrimary);
}

} // namespace

struct DataOffer::Listener {
    static void offered(void* data, zwlr_data_control_offer_v1*, const char* type) {
        auto& owner = *static_cast<DataOffer*>(data);
        if (owner.types_.size() == mostTypes)
            owner.isTooMuch_ = true;
        else if (isTypeName(type) && !owner.has(type))
            owner.types_.emplace_back(type);
    }

    static constexpr zwlr_data_control_offer_v1_listener functions{.offer = offered};
};

DataOffer::DataOffer(zwlr_data_control_offer_v1* offer) : offer_(offer) {
    zwlr_data_control_offer_v1_add_listener(offer, &Listener::functions, this);
}

DataOffer::~DataOffer() {
    zwlr_data_control_offer_v1_destroy(offer_);
}

bool DataOffer::has(const std::string& type) const {
    return std::ranges::find(types_, type) != types_.end();
}

void DataOffer::receive(const std::string& type, int descriptor) const {
    zwlr_data_control_offer_v1_receive(offer_, type.c_str(), descriptor);
}

struct DataControl::Listener {
    static void
    offered(void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        auto& control = *static_cast<DataControl*>(data);
        control.offers_[offer] = std::make_unique<DataOffer>(offer);
    }

    static std::unique_ptr<DataOffer> placed(DataControl& control,
                                             zwlr_data_control_offer_v1* offer) {
        auto node = control.offers_.extract(offer);
        return node ? std::move(node.mapped()) : nullptr;
    }

    static void
    selected(void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        auto& control = *static_cast<DataControl*>(data);
        control.events_.emplace_back(Selected{placed(control, offer)});
    }

    static void finished(void* data, zwlr_data_control_device_v1*) {
        static_cast<DataControl*>(data)->isFinished_ = true;
    }

    static void
    marked(void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
        placed(*static_cast<DataControl*>(data), offer);
    }

    static constexpr zwlr_data_control_device_v1_listener device{.data_offer = offered,
                                                                 .selection = selected,
                                                                 .finished = finished,
                                                                 .primary_selection = marked};

    static void
    wanted(void* data, zwlr_data_control_source_v1*, const char* type, std::int32_t descriptor) {
        const auto& source = *static_cast<Source*>(data);
        source.control.events_.emplace_back(
            Wanted{.source = source.number, .type = type, .into = FileDescriptor(descriptor)});
    }

    static void cancelled(void* data, zwlr_data_control_source_v1* proxy) {
        const auto& source = *static_cast<Source*>(data);
        auto& control = source.control;
        control.events_.emplace_back(Cancelled{source.number});
        zwlr_data_control_source_v1_destroy(proxy);
        control.sources_.erase(source.number);
    }

    static constexpr zwlr_data_control_source_v1_listener source{.send = wanted,
                                                                 .cancelled = cancelled};

    static void confirmed(void* data, wl_callback* callback, std::uint32_t) {
        const auto& question = *static_cast<Question*>(data);
        auto& control = question.control;
        control.events_.emplace_back(Confirmed{question.number});
        wl_callback_destroy(callback);
        control.questions_.erase(question.number);
    }

    static constexpr wl_callback_listener question{.done = confirmed};
};

bool DataControl::isOffered(const WaylandRegistry& registry) {
    return registry.find(ext_data_control_manager_v1_interface.name) ||
           registry.find(zwlr_data_control_manager_v1_interface.name);
}

DataControl::DataControl(const WaylandConnection& connection)
    : connection_(connection), manager_(bindManager(connection.registry())) {}

DataControl::~DataControl() {
    for (const auto& [number, question] : questions_)
        wl_callback_destroy(question->callback);
    letGoOfSeat();
    events_.clear();
    if (manager_)
        zwlr_data_control_manager_v1_destroy(manager_);
}

bool DataControl::hasSeat() {
    const auto& globals = connection_.registry().globals();
    const bool isThere =
        std::ranges::find(globals, seatName_, &WaylandRegistry::Global::name) != globals.end();
    if (device_ && (isFinished_ || !isThere))
        letGoOfSeat();
    const auto seat = connection_.registry().find(wl_seat_interface.name);
    // A seat whose device has ended is on its way out, and gives no other.
    if (device_ || !seat || !manager_ || (isFinished_ && seat->name == seatName_))
        return device_ != nullptr;
    seatName_ = seat->name;
    isFinished_ = false;
    seat_ = connection_.registry().bind<wl_seat>(*seat, wl_seat_interface, 1);
    device_ = zwlr_data_control_manager_v1_get_data_device(manager_, seat_);
    zwlr_data_control_device_v1_add_listener(device_, &Listener::device, this);
    return true;
}

void DataControl::letGoOfSeat() {
    offers_.clear();
    // What was told of that clipboard is about nothing any more.
    std::erase_if(events_, [](const Event& event) {
        return std::holds_alternative<Selected>(event) || std::holds_alternative<Wanted>(event);
    });
    for (const auto& [number, source] : sources_) {
        zwlr_data_control_source_v1_destroy(source->source);
        events_.emplace_back(Cancelled{number});
    }
    sources_.clear();
    if (device_)
        zwlr_data_control_device_v1_destroy(std::exchange(device_, nullptr));
    if (seat_)
        wl_seat_destroy(std::exchange(seat_, nullptr));
}

std::vector<DataControl::Event> DataControl::take() {
    return std::exchange(events_, {});
}

std::uint64_t DataControl::put(const std::vector<std::string>& types) {
    const auto number = ++lastNumber_;
    auto* const proxy = zwlr_data_control_manager_v1_create_data_source(manager_);
    const auto& source = sources_[number] =
        std::make_unique<Source>(Source{.control = *this, .number = number, .source = proxy});
    zwlr_data_control_source_v1_add_listener(proxy, &Listener::source, source.get());
    for (const auto& type : types)
        zwlr_data_control_source_v1_offer(proxy, type.c_str());
    zwlr_data_control_device_v1_set_selection(device_, proxy);
    return number;
}

std::uint64_t DataControl::confirm() {
    const auto number = ++lastNumber_;
    auto* const callback = wl_display_sync(connection_.display());
    const auto& question = questions_[number] = std::make_unique<Question>(
        Question{.control = *this, .number = number, .callback = callback});
    wl_callback_add_listener(callback, &Listener::question, question.get());
    return number;
}

} // namespace tessarine
