#include "launcherapp/platform/linux/pasteboard/x11/PasteboardCalls.h"

#include "tests/linux/pasteboard/ForeignOwner.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

/// The answer to a question about one copy, told when the display has or has not told of another.
PasteboardReading readingWhen(bool anotherCopied) {
    const ForeignOwner owner([](ForeignOwner& self, const ForeignOwner::Request& request) {
        self.put(request, "a/b", 8, "content");
        self.tell(request);
    });
    ForeignClient asker; // whose connection the calls have
    PasteboardMailbox mailbox;
    const SelectionAtoms atoms(asker.display);
    const ClipboardOwnership ownership(asker.display, atoms);
    std::optional<PasteboardReading> told;
    const PasteboardNews news{
        .offered = {},
        .read = [&](std::uint64_t, PasteboardReading reading) { told = std::move(reading); },
        .abandoned = {}};
    PasteboardCalls calls({.display = asker.display,
                           .atoms = atoms,
                           .mailbox = mailbox,
                           .ownership = ownership,
                           .news = news},
                          {});
    calls.add(ReadRequest{
        .call = 1, .count = PasteboardMailbox::firstCount, .type = "a/b", .limitBytes = 100});
    calls.goOn({.count = PasteboardMailbox::firstCount, .owner = owner.client.window},
               TransferClock::now());
    const auto answer = asker.next<xcb_selection_notify_event_t>(XCB_SELECTION_NOTIFY);
    if (anotherCopied)
        mailbox.othersChange();
    if (answer)
        calls.answered(*answer, TransferClock::now());
    return told.value_or(PasteboardReading{.problem = "nothing was told"});
}

TEST(PasteboardCalls, anAnswerThatComesWithTheNewsOfAnotherCopyIsNotTheOldOnes) {
    EXPECT_EQ(readingWhen(false).bytes, "content");
    const auto reading = readingWhen(true);
    EXPECT_EQ(reading.bytes, "") << "nobody has looked at the types that come with it";
    EXPECT_EQ(reading.problem, "something else lies on the clipboard now");
}

} // namespace
} // namespace tessarine
