#include "LauncherCore/commands/CommandTemplates.h"

#include "LauncherCore/text/Urls.h"

namespace tessarine {

std::string CommandTemplates::filled(std::string_view text, std::string_view argument) {
    const auto value = Urls::queryValue(argument);
    std::string result;
    for (;;) {
        const auto at = text.find(placeholder);
        result += text.substr(0, at);
        if (at == std::string_view::npos)
            return result;
        result += value;
        text.remove_prefix(at + placeholder.size());
    }
}

} // namespace tessarine
