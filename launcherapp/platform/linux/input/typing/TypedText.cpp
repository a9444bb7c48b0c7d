#include "launcherapp/platform/linux/input/typing/TypedText.h"

#include "LauncherCore/text/Scalars.h"

namespace tessarine {

std::u32string TypedText::characters(std::string_view text) {
    std::u32string characters;
    char32_t before = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto scalar = Scalars::at(text, i);
        i += scalar.bytes;
        const auto value = scalar.value;
        const bool isBreak = value == U'\r' || value == U'\n' || value == U'\u0085' ||
                             value == U'\u2028' || value == U'\u2029';
        const bool isControl = value < 0x20 || (value >= 0x7f && value < 0xa0);
        if (isBreak && !(value == U'\n' && before == U'\r'))
            characters += U'\n';
        else if (value == U'\t' || !(isBreak || isControl))
            characters += value;
        before = value;
    }
    return characters;
}

} // namespace tessarine
