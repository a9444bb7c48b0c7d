#include "LauncherCore/clipboard/ClipFilterKeyJson.h"

#include <nlohmann/json.hpp>

namespace tessarine {

namespace {

using Json = nlohmann::json;

constexpr const char* builtinKey = "builtin";
constexpr const char* groupKey = "group";
constexpr const char* valueKey = "_0";

std::optional<ClipFilterKey> keyFrom(const std::string& form, const std::string& name) {
    if (form == groupKey)
        return ClipFilterKey::group(name);
    const auto category = ClipKinds::category(name);
    return category ? std::optional(ClipFilterKey::builtin(*category)) : std::nullopt;
}

} // namespace

std::string ClipFilterKeyJson::encoded(const ClipFilterKey& key) {
    const auto* category = std::get_if<ClipCategory>(&key.value);
    const Json object =
        category ? Json{{builtinKey, {{valueKey, ClipKinds::rawValue(*category)}}}}
                 : Json{{groupKey, {{valueKey, std::get<ClipFilterKey::Group>(key.value).name}}}};
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

ClipFilterKeyJson::Decoded ClipFilterKeyJson::decoded(std::string_view text) {
    const auto object = Json::parse(text, nullptr, false);
    if (!object.is_object())
        return {.problem = "A filter is an object."};
    if (object.size() != 1)
        return {.problem = "Invalid number of keys found, expected one."};
    const auto& form = object.begin().key();
    const auto& inner = object.begin().value();
    if (form != builtinKey && form != groupKey)
        return {.problem = "There is no filter of the form \"" + form + "\"."};
    const auto name = inner.is_object() ? inner.find(valueKey) : inner.end();
    if (!inner.is_object() || name == inner.end() || !name->is_string())
        return {.problem = "A filter has a text as its \"_0\"."};
    auto key = keyFrom(form, name->get<std::string>());
    if (!key)
        return {.problem = "There is no category \"" + name->get<std::string>() + "\"."};
    return {.key = std::move(key)};
}

} // namespace tessarine
