#include "LauncherCore/text/ForeignJson.h"

#include "LauncherCore/text/Folding.h"

#include <nlohmann/json.hpp>

namespace tessarine {

nlohmann::json ForeignJson::read(std::string_view text) {
    auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_discarded() || Folding::isUtf8(text))
        return json;
    return nlohmann::json::parse(Folding::repairedUtf8(text), nullptr, false);
}

} // namespace tessarine
