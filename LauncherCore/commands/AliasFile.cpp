#include "LauncherCore/commands/AliasFile.h"

#include "LauncherCore/commands/CommandFile.h"
#include "LauncherCore/commands/CommandJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tessarine {

namespace {

using Json = nlohmann::json;

/// A word alone stands for a list of one.
std::vector<std::string> wordsOf(const Json& value, const std::string& key) {
    if (value.is_string())
        return {value.get<std::string>()};
    if (!value.is_array() || !std::ranges::all_of(value, &Json::is_string))
        throw CommandFileError("the words of \"" + key + "\" are no list of texts");
    return value.get<std::vector<std::string>>();
}

AliasFile::Words wordsAt(const Json& root, const char* key) {
    AliasFile::Words words;
    const auto member = root.find(key);
    if (member == root.end() || member->is_null())
        return words;
    if (!member->is_object())
        throw CommandFileError("\"" + std::string(key) + "\" is no object");
    for (const auto& [name, value] : member->items())
        words.emplace(name, wordsOf(value, name));
    return words;
}

} // namespace

AliasFile AliasFile::decoded(std::string_view data) {
    const auto root = CommandJson::parsed(data);
    if (!root.is_object())
        throw CommandFileError("it is no object");
    return {.version = CommandJson::version(root),
            .chromeProfiles = wordsAt(root, "chromeProfiles"),
            .slack = wordsAt(root, "slack")};
}

} // namespace tessarine
