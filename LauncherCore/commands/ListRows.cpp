#include "LauncherCore/commands/ListRows.h"

#include "LauncherCore/commands/CommandFile.h"
#include "LauncherCore/commands/CommandJson.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;

/// What an object has under a key.
struct Member {
    std::optional<std::string> text; ///< null counts as absent
    bool isWrong = false;            ///< there, and no text that a script could be given
};

Member memberOf(const Json& object, const char* key) {
    const auto member = object.find(key);
    if (member == object.end() || member->is_null())
        return {};
    const auto* text = member->get_ptr<const std::string*>();
    if (!text || text->find('\0') != std::string::npos)
        return {.isWrong = true};
    return {.text = *text};
}

std::optional<ListRow> rowOf(const Json& object) {
    if (!object.is_object())
        return std::nullopt;
    auto title = memberOf(object, "title");
    auto subtitle = memberOf(object, "subtitle");
    auto arg = memberOf(object, "arg");
    auto icon = memberOf(object, "icon");
    if (!title.text || subtitle.isWrong || arg.isWrong || icon.isWrong)
        return std::nullopt;
    return ListRow{.title = *std::move(title.text),
                   .subtitle = std::move(subtitle.text),
                   .arg = std::move(arg.text),
                   .icon = std::move(icon.text)};
}

std::optional<std::vector<ListRow>> rowsOf(const Json& array) {
    if (!array.is_array())
        return std::nullopt;
    std::vector<ListRow> rows;
    rows.reserve(array.size());
    for (const auto& object : array) {
        auto row = rowOf(object);
        if (!row)
            return std::nullopt;
        rows.push_back(*std::move(row));
    }
    return rows;
}

} // namespace

std::optional<std::vector<ListRow>> parseListRows(std::string_view output) {
    // The library takes a NUL for the end of the text.
    if (output.find('\0') != std::string_view::npos)
        return std::nullopt;
    try {
        const auto root = CommandJson::parsed(output);
        if (!root.is_object())
            return rowsOf(root);
        const auto items = root.find("items");
        return items == root.end() ? std::nullopt : rowsOf(*items);
    } catch (const CommandFileError&) {
        return std::nullopt;
    }
}

} // namespace tessarine
