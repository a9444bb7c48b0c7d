#pragma once

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Pasteboard.h"
#include "tests/fakes/VirtualTime.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A pasteboard in memory and virtual time, whose owners behave as badly as a test makes them.
/// Counts what was asked of them.
class FakePasteboard : public Pasteboard {
public:
    using Items = std::vector<std::pair<std::string, std::string>>; ///< types with their contents

    /// How the program that copied answers.
    struct Owner {
        enum class Manner {
            prompt,
            silent,    ///< never, so that the patience runs out
            refusing,  ///< tells its types and then gives no content
            vanishing, ///< ends in the middle of a transfer
            replaced   ///< by another one, whose content is taken for its own: see `next`
        } manner = Manner::prompt;
        Seconds answersAfter{0};      ///< of each answer that it gives
        std::string refusedType = {}; ///< the one type of which it gives no content
        Items next = {};              ///< what replaces its copy
    };

    static constexpr Seconds patience{5};

    explicit FakePasteboard(VirtualTime& time) : time_(time) {}

    Ability ability() const override { return supported; }

    std::uint64_t changeCount() const override { return count_; }

    void offer(std::function<void(std::optional<PasteboardOffer>)> done) override {
        ++offers;
        const bool isSilent = owner_.manner == Owner::Manner::silent;
        const auto delay = isOwn_ ? heardAfter : owner_.answersAfter;
        time_.schedule(
            isSilent ? patience : delay, [this, isSilent, asked = count_, done = std::move(done)] {
                if (isSilent || asked != count_)
                    return done(std::nullopt);
                done(PasteboardOffer{.count = count_, .types = types(), .succession = succession_});
            });
    }

    void read(std::uint64_t count,
              const std::string& type,
              std::size_t limitBytes,
              std::function<void(PasteboardReading)> done) override {
        ++reads[type];
        limits[type] = limitBytes;
        const bool isSilent = owner_.manner == Owner::Manner::silent;
        time_.schedule(isSilent ? patience : owner_.answersAfter,
                       [this, count, type, limitBytes, done = std::move(done)] {
                           done(answer(count, type, limitBytes));
                       });
    }

    std::uint64_t write(PasteboardContent content) override {
        if (!supported.available)
            return count_;
        items_.clear();
        for (const auto& item : content.items)
            items_.emplace_back(item.type, *item.bytes);
        written.push_back(std::move(content));
        owner_ = {};
        isOwn_ = true;
        gone_.reset();
        succession_.reset();
        return ++count_;
    }

    Subscription onAbandoned(std::function<void(std::uint64_t)> gone) override {
        return abandonments_.add(std::move(gone));
    }

    bool tellsEndFromEmptying() const override { return tellsEnd; }

    Subscription onAbilityChanged(std::function<void()> changed) override {
        return abilities_.add(std::move(changed));
    }

    void setAbility(Ability ability) {
        supported = std::move(ability);
        abilities_.tell();
    }

    // What other programs do.

    void copy(Items items, Owner owner) {
        succession_.reset();
        if (const auto gone = std::exchange(gone_, std::nullopt))
            succession_ = {.first = gone->first,
                           .last = gone->first,
                           .pause = std::chrono::floor<std::chrono::milliseconds>(time_.uptime() -
                                                                                  gone->second)};
        items_ = std::move(items);
        owner_ = owner;
        isOwn_ = false;
        ++count_;
    }

    void copy(Items items) { copy(std::move(items), Owner{}); }

    /// The owner has taken the pasteboard anew.
    void copyAgain(Items items) {
        copy(std::move(items));
        succession_ = {.first = count_ - 1, .last = count_ - 1, .isSameOwner = true};
    }

    void copyText(const std::string& text) { copy({{"UTF8_STRING", text}}); }

    /// The program that copied last ends.
    void quitOwner() {
        if (std::exchange(isOwn_, true))
            return;
        items_.clear();
        const auto abandoned = count_++;
        gone_ = {abandoned, time_.uptime()};
        succession_.reset();
        abandonments_.tell(abandoned);
    }

    /// The content of a type as a program would paste it; nothing when it isn't offered.
    std::optional<std::string> content(const std::string& type) const {
        for (const auto& [name, bytes] : items_) {
            if (name == type)
                return bytes;
        }
        return std::nullopt;
    }

    int totalReads() const {
        int total = 0;
        for (const auto& [type, times] : reads)
            total += times;
        return total;
    }

    Ability supported;
    bool tellsEnd = true;
    Seconds heardAfter{0};                     ///< when our own writes are offered
    int offers = 0;                            ///< how often the types were asked for
    std::map<std::string, int> reads;          ///< how often each type's content was
    std::map<std::string, std::size_t> limits; ///< the last limit given for it, in bytes
    std::vector<PasteboardContent> written;

private:
    std::vector<std::string> types() const {
        std::vector<std::string> names;
        for (const auto& [type, bytes] : items_)
            names.push_back(type);
        return names;
    }

    PasteboardReading answer(std::uint64_t count, const std::string& type, std::size_t limitBytes) {
        if (count != count_)
            return {.problem = "something else was copied"};
        if (owner_.manner == Owner::Manner::silent)
            return {.problem = "no answer within 5 s"};
        if (owner_.manner == Owner::Manner::vanishing) {
            quitOwner();
            return {.problem = "the owner ended"};
        }
        if (owner_.manner == Owner::Manner::replaced)
            copy(std::exchange(owner_.next, {}));
        const auto bytes = content(type);
        if (!bytes || owner_.manner == Owner::Manner::refusing || owner_.refusedType == type)
            return {.problem = "refused"};
        if (bytes->size() > limitBytes)
            return {.outcome = PasteboardReading::Outcome::tooLarge};
        return {.outcome = PasteboardReading::Outcome::complete, .bytes = *bytes};
    }

    VirtualTime& time_;
    Items items_;
    Owner owner_;
    bool isOwn_ = true; ///< or nobody's
    std::uint64_t count_ = 1;
    std::optional<std::pair<std::uint64_t, Seconds>> gone_; ///< what an owner took along, and when
    std::optional<PasteboardSuccession> succession_;
    Observers<std::uint64_t> abandonments_;
    Observers<> abilities_;
};

} // namespace tessarine
