#pragma once

#include <functional>
#include <utility>

namespace tessarine {

/// Something that goes on until this object is destroyed: a timer, a watch, an observer.
/// Made, moved and destroyed on the main thread; after `end` its callback is not called again.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;

    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}

    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}

    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            end();
            end_ = std::exchange(other.end_, nullptr);
        }
        return *this;
    }

    ~Subscription() { end(); }

    /// Ends it now; a second call does nothing.
    void end() {
        if (const auto callback = std::exchange(end_, nullptr))
            callback();
    }

    bool active() const { return static_cast<bool>(end_); }

private:
    std::function<void()> end_;
};

} // namespace tessarine
