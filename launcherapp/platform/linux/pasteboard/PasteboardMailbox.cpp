#include "launcherapp/platform/linux/pasteboard/PasteboardMailbox.h"

#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>
#include <utility>

namespace tessarine {

PasteboardMailbox::PasteboardMailbox() : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wake_)
        throw std::system_error(errno, std::generic_category());
    publish();
}

Ability PasteboardMailbox::ability() const {
    const std::lock_guard lock(mutex_);
    return ability_;
}

void PasteboardMailbox::ask(PasteboardRequest request) {
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(std::move(request));
    }
    wakeUp();
}

std::uint64_t PasteboardMailbox::write(PasteboardContent content) {
    std::uint64_t count = 0;
    {
        const std::lock_guard lock(mutex_);
        if (!ability_.available)
            return counter_.value();
        count = counter_.writes();
        requests_.push_back(WriteRequest{.count = count, .content = std::move(content)});
        publish();
    }
    wakeUp();
    return count;
}

void PasteboardMailbox::close() {
    {
        const std::lock_guard lock(mutex_);
        isClosed_ = true;
    }
    wakeUp();
}

std::optional<std::vector<PasteboardRequest>> PasteboardMailbox::take() {
    eventfd_t ignored = 0;
    (void)::eventfd_read(wake_.number(), &ignored);
    const std::lock_guard lock(mutex_);
    if (isClosed_)
        return std::nullopt;
    return std::exchange(requests_, {});
}

std::optional<std::uint64_t> PasteboardMailbox::othersChange() {
    const std::lock_guard lock(mutex_);
    const auto count = counter_.othersChange();
    publish();
    return count;
}

void PasteboardMailbox::arrived(std::uint64_t count) {
    const std::lock_guard lock(mutex_);
    counter_.arrived(count);
}

std::optional<std::uint64_t> PasteboardMailbox::refused(std::uint64_t count) {
    const std::lock_guard lock(mutex_);
    const auto after = counter_.refused(count);
    publish();
    return after;
}

void PasteboardMailbox::lose(std::string reason) {
    const std::lock_guard lock(mutex_);
    ability_ = Ability::missing(std::move(reason));
}

void PasteboardMailbox::regain() {
    const std::lock_guard lock(mutex_);
    ability_ = {};
}

void PasteboardMailbox::wakeUp() const {
    (void)::eventfd_write(wake_.number(), 1);
}

} // namespace tessarine
