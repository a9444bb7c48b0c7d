#include "tests/wayland/TestKeys.h"

#include <linux/input-event-codes.h>

#include <map>

namespace tessarine {

std::uint32_t keyOf(char character) {
    static const std::map<char, std::uint32_t> keys = [] {
        std::map<char, std::uint32_t> made{{' ', KEY_SPACE}, {'\n', KEY_ENTER}, {'0', KEY_0}};
        const auto row = [&made](std::uint32_t first, const char* characters) {
            for (; *characters; ++characters)
                made[*characters] = first++;
        };
        row(KEY_1, "123456789");
        row(KEY_Q, "qwertyuiop");
        row(KEY_A, "asdfghjkl");
        row(KEY_Z, "zxcvbnm");
        return made;
    }();
    return keys.at(character);
}

} // namespace tessarine
