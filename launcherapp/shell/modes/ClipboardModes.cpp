#include "launcherapp/shell/modes/ClipboardModes.h"

#include "LauncherCore/text/Printable.h"
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
#include <memory>
#include <optional>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t longestText = std::size_t{1} << 16; ///< bytes; more fills a terminal

void refuse(ModeContext& context, std::string_view mode, std::string_view reason) {
    finish(context,
           {.verdict = SelftestResult::Verdict::notMeasured,
            .report = fmt::format("{}: NOT MEASURED, {}", mode, reason)});
}

constexpr std::string_view notLoaded = R"({
  "message": "The clipboard history could not be read in time; nothing was done",
  "ok": false,
  "reason": "not_loaded"
})";

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
        const auto count = board_.changeCount();
        if (std::exchange(last_, count) == count)
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
            // What a text tells a terminal to do is not for this one.
            context_.print(Printable::line(PasteboardTypes::text(type, reading.bytes)));
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
    refuse(context, name, "this run has no clipboard");
    return false;
}

void answerClipGroups(ModeContext& context) {
    const auto& services = *context.clipboard;
    if (!services.store.isLoaded()) {
        // A count over what was not read would be told as a fact.
        context.print(notLoaded);
        context.finish(1);
        return;
    }
    auto verb = context.commandLine.value("--clip-groups");
    if (verb && verb->starts_with("--"))
        verb.reset();
    const auto reply = ClipGroupsCommandLine::reply({.verb = std::move(verb),
                                                     .json = context.commandLine.value("--json"),
                                                     .name = context.commandLine.value("--name")},
                                                    services.store.history(),
                                                    services.groups,
                                                    services.runtime);
    if (!reply.problem.empty())
        context.printError(reply.problem);
    if (!reply.output.empty())
        context.print(reply.output);
    context.finish(reply.status);
}

} // namespace

void ClipboardModes::pasteboardTypes(ModeContext& context, const std::string&) {
    if (!hasClipboard(context, "pasteboard-types"))
        return;
    if (const auto ability = context.clipboard->board.ability(); !ability.available) {
        refuse(context, "pasteboard-types", ability.reason);
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
        [&context] { answerClipGroups(context); });
}

void ClipboardModes::selftestClipSacred(ModeContext& context, const std::string&) {
    finish(context, clipSacredSelftest());
}

void ClipboardModes::selftestClipFile(ModeContext& context, const std::string&) {
    finish(context, clipFileSelftest());
}

} // namespace tessarine
