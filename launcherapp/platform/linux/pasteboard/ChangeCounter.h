#pragma once

#include <cstdint>
#include <optional>

namespace tessarine {

/// Counts the changes of a clipboard that several programs write at the same time. Our own write is
/// counted at once, though the display hears of it later; what others put there before it did has
/// been replaced by then, and is not counted after ours. One thread at a time.
class ChangeCounter {
public:
    /// Of what lies there at first.
    static constexpr std::uint64_t firstValue = 1;

    std::uint64_t value() const { return value_; }

    /// We are about to put something there. Gives its count.
    std::uint64_t writes();

    /// Somebody else has, or has let go of what was there. Gives the new count; nothing while our
    /// own is on its way, which then settles it.
    std::optional<std::uint64_t> othersChange();

    /// The write of that count is there. An older one than the last settles nothing.
    void arrived(std::uint64_t count);

    /// The display refused the write of that count, for another program was later. Gives the count
    /// of what that one put there; nothing while a later write is on its way.
    std::optional<std::uint64_t> refused(std::uint64_t count);

private:
    std::uint64_t value_ = firstValue;
    std::optional<std::uint64_t> onItsWay_;
};

} // namespace tessarine
