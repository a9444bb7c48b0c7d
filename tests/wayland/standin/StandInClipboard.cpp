#include "tests/wayland/standin/StandInClipboard.h"

#include <ext-data-control-v1-server.h>

#include <array>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

/// What a program has put there, or is about to.
struct StandInClipboard::Content {
    std::vector<std::string> types;
    Answer answer;                 ///< another program's
    wl_resource* source = nullptr; ///< of a program that is connected

    void give(const std::string& type, FileDescriptor into) const {
        if (source)
            ext_data_control_source_v1_send_send(source, type.c_str(), into.number());
        else if (answer)
            answer(type, std::move(into));
    }
};

struct StandInClipboard::Requests {
    using Shared = std::shared_ptr<Content>;

    static StandInClipboard& owner(wl_resource* resource) {
        return *static_cast<StandInClipboard*>(wl_resource_get_user_data(resource));
    }

    /// An offer's and a source's, each with whose it is.
    struct Held {
        StandInClipboard& clipboard;
        Shared content;
    };

    static Held& held(wl_resource* resource) {
        return *static_cast<Held*>(wl_resource_get_user_data(resource));
    }

    static void release(wl_resource* resource) { delete &held(resource); }

    static void destroy(wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }

    static void receive(wl_client*, wl_resource* offer, const char* type, std::int32_t descriptor) {
        auto& [clipboard, content] = held(offer);
        clipboard.compositor_.note(std::string("want ") + type);
        content->give(type, FileDescriptor(descriptor));
    }

    static void offerType(wl_client*, wl_resource* source, const char* type) {
        held(source).content->types.emplace_back(type);
    }

    static void dropClaim(wl_client*, wl_resource* source) {
        held(source).clipboard.compositor_.note("drop claim");
        wl_resource_destroy(source);
    }

    static void sourceGone(wl_resource* source) {
        held(source).clipboard.forget(source);
        release(source);
    }

    static void select(wl_client*, wl_resource* device, wl_resource* source) {
        auto& clipboard = owner(device);
        clipboard.compositor_.note("claim");
        if (clipboard.onClaim)
            clipboard.onClaim();
        else
            clipboard.put(source ? held(source).content : nullptr);
    }

    static void selectPrimary(wl_client*, wl_resource*, wl_resource*) {}

    static void unwatch(wl_client*, wl_resource* device) {
        owner(device).compositor_.note("unwatch");
        wl_resource_destroy(device);
    }

    static void deviceGone(wl_resource* device) { std::erase(owner(device).devices_, device); }

    static void makeSource(wl_client* client, wl_resource* manager, std::uint32_t id) {
        auto* const made = wl_resource_create(client, &ext_data_control_source_v1_interface, 1, id);
        auto content =
            std::make_shared<Content>(Content{.types = {}, .answer = {}, .source = made});
        wl_resource_set_implementation(
            made, &ofSource, new Held{owner(manager), std::move(content)}, sourceGone);
    }

    static void
    makeDevice(wl_client* client, wl_resource* manager, std::uint32_t id, wl_resource*) {
        auto& clipboard = owner(manager);
        clipboard.compositor_.note("watch");
        auto* const made = wl_resource_create(client, &ext_data_control_device_v1_interface, 1, id);
        wl_resource_set_implementation(made, &ofDevice, &clipboard, deviceGone);
        clipboard.devices_.push_back(made);
        clipboard.tell(made);
    }

    static constexpr struct ext_data_control_offer_v1_interface ofOffer {
        .receive = receive, .destroy = destroy
    };

    static constexpr struct ext_data_control_source_v1_interface ofSource {
        .offer = offerType, .destroy = dropClaim
    };

    static constexpr struct ext_data_control_device_v1_interface ofDevice {
        .set_selection = select, .destroy = unwatch, .set_primary_selection = selectPrimary
    };

    static constexpr struct ext_data_control_manager_v1_interface ofManager {
        .create_data_source = makeSource, .get_data_device = makeDevice, .destroy = destroy
    };
};

StandInClipboard::StandInClipboard(StandInCompositor& compositor)
    : compositor_(compositor), service_{.interface = &ext_data_control_manager_v1_interface,
                                        .requests = &Requests::ofManager,
                                        .data = this} {
    compositor_.offer(service_);
}

StandInClipboard::~StandInClipboard() {
    compositor_.disconnectAll();
}

void StandInClipboard::copy(const std::vector<std::string>& types, Answer answer) {
    compositor_.run([&] {
        put(types.empty()
                ? nullptr
                : std::make_shared<Content>(Content{.types = types, .answer = std::move(answer)}));
    });
}

FileDescriptor StandInClipboard::paste(const std::string& type) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    compositor_.run([&] {
        FileDescriptor into(ends[1]);
        if (content_)
            content_->give(type, std::move(into));
    });
    return FileDescriptor(ends[0]);
}

std::vector<std::string> StandInClipboard::types() {
    std::vector<std::string> found;
    compositor_.run([&] {
        if (content_)
            found = content_->types;
    });
    return found;
}

void StandInClipboard::finish() {
    compositor_.run([&] {
        for (auto* const device : devices_)
            ext_data_control_device_v1_send_finished(device);
        devices_.clear();
    });
}

void StandInClipboard::put(std::shared_ptr<Content> content) {
    const auto before = std::exchange(content_, std::move(content));
    if (before && before->source)
        ext_data_control_source_v1_send_cancelled(before->source);
    for (auto* const device : devices_)
        tell(device);
}

/// What lies there, to one that watches.
void StandInClipboard::tell(wl_resource* device) {
    wl_resource* offer = nullptr;
    if (content_) {
        offer = wl_resource_create(
            wl_resource_get_client(device), &ext_data_control_offer_v1_interface, 1, 0);
        wl_resource_set_implementation(
            offer, &Requests::ofOffer, new Requests::Held{*this, content_}, Requests::release);
        ext_data_control_device_v1_send_data_offer(device, offer);
        for (const auto& type : content_->types)
            ext_data_control_offer_v1_send_offer(offer, type.c_str());
    }
    ext_data_control_device_v1_send_selection(device, offer);
}

/// Nothing comes from it any more; what lay there of it is gone.
void StandInClipboard::forget(wl_resource* source) {
    Requests::held(source).content->source = nullptr;
    if (content_ == Requests::held(source).content)
        put(nullptr);
}

} // namespace tessarine
