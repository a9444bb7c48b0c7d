#pragma once

#include <unicode/unistr.h>
#include <unicode/utext.h>

#include <array>
#include <cstdint>

namespace tessarine {

/// A text that ICU's expressions read in small pieces, so that what they read can be bounded: their
/// own limit counts saved states, and a scan to the end of a line saves none. Once the budget is
/// spent the text ends wherever it is read, and what was found in it means nothing. For the files
/// that call ICU, never for another header. One thread at a time.
class CountedText {
public:
    /// `nanoseconds` may be spent, on a usual machine: time is counted by what is done, so that the
    /// same text gives the same answer everywhere.
    CountedText(const icu::UnicodeString& text, std::int64_t nanoseconds);
    ~CountedText();
    CountedText(const CountedText&) = delete;
    CountedText& operator=(const CountedText&) = delete;

    /// Null for want of memory. Valid as long as this object and the text are, and so are its
    /// clones.
    UText* text() { return opened_; }

    /// On reading the piece that begins there. Whether anything is left.
    bool spendOnPiece(std::int64_t first);

    /// On something else. Whether anything is left.
    bool spend(std::int64_t nanoseconds) {
        left_ -= nanoseconds;
        return !isSpent();
    }

    bool isSpent() const { return left_ < 0; }

private:
    std::int64_t left_;
    std::array<std::int64_t, 2> lastPieces_{-1, -1};
    UText storage_ = UTEXT_INITIALIZER;
    UText* opened_ = nullptr;
};

} // namespace tessarine
