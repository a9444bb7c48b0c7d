#include "launcherapp/shell/modes/ClipboardModes.h"

#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/clipboard/PasteboardTypes.h"
#include "launcherapp/clipboard/groups/ClipGroupStore.h"
#include "launcherapp/clipboard/groups/ClipGroupsCommandLine.h"
#include "launcherapp/clipboard/proof/ClipSelftests.h"
#include "launcherapp/operations/Selftest.h"
#include "launcherapp/shell/modes/ModeWaits.h"
#include "launcherapp/shell/modes/Modes.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

namespace tessarine {

namespace {

constexpr int wrongWords = 2;
constexpr std::size_t longestText = std::size_t{1} << 16;

/// Watches until its time is over.
class TypesWatch : public std::enable_shared_from_this<TypesWatch> {
public:
    explicit TypesWatch(ModeContext& context)
        : context_(context), board_(context.clipboard->board), last_(board_.changeCount()) {}

    void start() {
        timer_ = context_.queue.every(
            ClipboardModes::interval, Seconds{0}, [self = shared_from_this()] { self->look(); });
        context_.queue.postAfter(ClipboardModes::watched, [self = shared_from_this()] {
            self->timer_.end();
            self->context_.print("done");
            self->context_.finish(0);
        });
    }

private:
    void look() {
        if (std::exchange(last_, board_.changeCount()) == board_.changeCount())
            return;
        board_.offer([self = shared_from_this()](const std::optional<PasteboardOffer>& offer) {
            if (offer)
                self->tell(*offer);
            else
                self->context_.print("change, and its owner doesn't say what it offers");
        });
    }

    void tell(const PasteboardOffer& offer) {
        context_.print(fmt::format("change {} types=[{}] REMOTE={}",
                                   offer.count,
                                   fmt::join(offer.types, ", "),
                                   PasteboardTypes::isRemote(offer.types)));
        if (const auto marker = PasteboardTypes::secretMarker(offer.types)) {
            context_.print(fmt::format("<{}, not read>", *marker));
            return;
        }
        const auto type = PasteboardTypes::textType(offer.types);
        if (!type) {
            context_.print("<not text>");
            return;
        }
        board_.read(offer.count,
                    *type,
                    longestText,
                    [self = shared_from_this(), type](const PasteboardReading& reading) {
                        self->tell(*type, reading);
                    });
    }

    void tell(const std::string& type, const PasteboardReading& reading) {
        switch (reading.outcome) {
        case PasteboardReading::Outcome::complete:
            context_.print(PasteboardTypes::text(type, reading.bytes));
            return;
        case PasteboardReading::Outcome::tooLarge:
            context_.print(fmt::format("<more than {} bytes>", longestText));
            return;
        case PasteboardReading::Outcome::failed:
            context_.print(fmt::format("<not read: {}>", reading.problem));
            return;
        }
    }

    ModeContext& context_;
    Pasteboard& board_;
    std::uint64_t last_;
    Subscription timer_;
};

bool hasClipboard(ModeContext& context, std::string_view name) {
    if (context.clipboard)
        return true;
    context.print(fmt::format("{}: NOT MEASURED, this run has no clipboard", name));
    context.finish(wrongWords);
    return false;
}

void finish(ModeContext& context, const SelftestResult& result) {
    context.print(result.report);
    context.finish(static_cast<int>(result.verdict));
}

} // namespace

void ClipboardModes::pasteboardTypes(ModeContext& context, const std::string&) {
    if (!hasClipboard(context, "pasteboard-types"))
        return;
    if (const auto ability = context.clipboard->board.ability(); !ability.available) {
        context.print("pasteboard-types: NOT MEASURED, " + ability.reason);
        context.finish(wrongWords);
        return;
    }
    std::make_shared<TypesWatch>(context)->start();
}

void ClipboardModes::clipGroups(ModeContext& context, const std::string&) {
    if (!hasClipboard(context, "clip-groups"))
        return;
    ModeWaits::until(
        context,
        [&store = context.clipboard->store] { return store.isLoaded(); },
        [&context] {
            auto& services = *context.clipboard;
            auto verb = context.commandLine.value("--clip-groups");
            if (verb && verb->starts_with("--"))
                verb.reset();
            const auto reply =
                ClipGroupsCommandLine::reply({.verb = std::move(verb),
                                              .json = context.commandLine.value("--json"),
                                              .name = context.commandLine.value("--name")},
                                             services.store.history(),
                                             services.groups,
                                             services.runtime);
            if (!reply.problem.empty())
                std::fputs(reply.problem.c_str(), stderr);
            if (!reply.output.empty())
                context.print(reply.output);
            context.finish(reply.status);
        });
}

void ClipboardModes::selftestClipSacred(ModeContext& context, const std::string&) {
    finish(context, clipSacredSelftest());
}

void ClipboardModes::selftestClipFile(ModeContext& context, const std::string&) {
    finish(context, clipFileSelftest());
}

} // namespace tessarine
