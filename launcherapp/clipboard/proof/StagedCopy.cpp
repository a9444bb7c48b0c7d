#include "launcherapp/clipboard/proof/StagedCopy.h"

#include "launcherapp/platform/WorkQueues.h"

#include <algorithm>
#include <deque>
#include <functional>

namespace tessarine {

namespace {

/// What is to be done next, so that nothing is answered inside the call that asked.
using Line = std::deque<std::function<void()>>;

class StagedPasteboard : public Pasteboard {
public:
    StagedPasteboard(const StagedCopy::Items& items, Line& line) : items_(items), line_(line) {}

    Ability ability() const override { return {}; }

    std::uint64_t changeCount() const override { return count; }

    void offer(std::function<void(std::optional<PasteboardOffer>)> done) override {
        PasteboardOffer offer{.count = count, .types = {}};
        for (const auto& [type, bytes] : items_)
            offer.types.push_back(type);
        line_.push_back([done = std::move(done), offer = std::move(offer)] { done(offer); });
    }

    void read(std::uint64_t,
              const std::string& type,
              std::size_t limitBytes,
              std::function<void(PasteboardReading)> done) override {
        ++reads;
        PasteboardReading reading;
        const auto found = std::ranges::find(items_, type, &StagedCopy::Items::value_type::first);
        if (found != items_.end() && found->second.size() > limitBytes)
            reading.outcome = PasteboardReading::Outcome::tooLarge;
        else if (found != items_.end())
            reading = {.outcome = PasteboardReading::Outcome::complete,
                       .bytes = found->second,
                       .problem = {}};
        line_.push_back([done = std::move(done), reading = std::move(reading)] { done(reading); });
    }

    std::uint64_t write(PasteboardContent) override { return count; }

    Subscription onAbandoned(std::function<void(std::uint64_t)>) override { return {}; }

    Subscription onAbilityChanged(std::function<void()>) override { return {}; }

    static constexpr std::uint64_t count = 1;
    int reads = 0;

private:
    const StagedCopy::Items& items_;
    Line& line_;
};

/// Work that is done in its turn on the thread that waits for it.
class StagedWork : public WorkQueues {
public:
    explicit StagedWork(Line& line) : queue_(line) {}

    SerialQueue& serial(std::string_view) override { return queue_; }

    void
    submit(WorkPriority, std::function<void()> job, std::function<void()> completion) override {
        submitApart(std::move(job), std::move(completion));
    }

    void submitApart(std::function<void()> job, std::function<void()> completion) override {
        queue_.submit(std::move(job));
        if (completion)
            queue_.submit(std::move(completion));
    }

private:
    struct Queue : SerialQueue {
        explicit Queue(Line& jobs) : line(jobs) {}

        void submit(std::function<void()> job) override { line.push_back(std::move(job)); }

        Line& line;
    };

    Queue queue_;
};

} // namespace

StagedCopy examined(const StagedCopy::Items& items, const ClipSkips::Circumstances& circumstances) {
    Line line;
    StagedPasteboard board(items, line);
    StagedWork work(line);
    StagedCopy copy;
    const ClipExamination examination(
        {.work = work, .board = board},
        {.count = StagedPasteboard::count, .at = 1, .front = {}, .circumstances = circumstances},
        [&copy](ClipExamination::Result&& result) { copy.result = std::move(result); });
    while (!line.empty()) {
        const auto next = std::move(line.front());
        line.pop_front();
        next();
    }
    copy.reads = board.reads;
    return copy;
}

} // namespace tessarine
