#include "LauncherCore/text/Printable.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(Printable, aBeginningCutsNoCharacterInTwo) {
    const struct {
        const char* reason;
        std::string bytes;
        std::size_t most;
        std::string beginning;
    } cases[] = {
        {"all of it", "abc", 3, "abc"},
        {"letters", "abcd", 3, "abc"},
        {"between characters", "aüb", 3, "aü"},
        {"within two bytes", "aüb", 2, "a"},
        {"within three bytes", "a€b", 3, "a"},
        {"within four bytes", "a😀b", 4, "a"},
        {"nothing fits", "😀", 1, ""},
        {"so many continuations are no character", "a\x80\x80\x80\x80\x80", 5, "a\x80\x80\x80\x80"},
        {"none of it", "ü", 0, ""},
    };

    for (const auto& [reason, bytes, most, beginning] : cases)
        EXPECT_EQ(Printable::beginning(bytes, most), beginning) << reason;
}

TEST(Printable, nothingEndsTheLineOrHidesInIt) {
    const struct {
        const char* reason;
        std::string bytes;
        std::string line;
    } cases[] = {
        {"text as it is", "aü😀 \"\\", "aü😀 \"\\"},
        {"line ends and tabs", "a\nb\r\tc", "a\\nb\\r\\tc"},
        {"Unicode's line ends", "a\u2028b\u2029c", "a\\nb\\nc"},
        {"a terminal's escape, a NUL, a delete",
         std::string("\x1b[1m\0\x7f", 6),
         "\\x1b[1m\\x00\\x7f"},
        {"text turned round, and C1's line end", "a\u202eb\u0085c", "abc"},
        {"bytes that are no text", "a\xff\xc3", "a\uFFFD\uFFFD"},
    };

    for (const auto& [reason, bytes, line] : cases)
        EXPECT_EQ(Printable::line(bytes), line) << reason;
}

} // namespace
} // namespace tessarine
