#include "LauncherCore/commands/CommandJson.h"

#include "LauncherCore/commands/CommandFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Json = nlohmann::json;

/// Writing a document out again goes down into it by recursion.
constexpr int deepestNesting = 256;

struct KindName {
    CommandKind kind;
    std::string_view name;
};

constexpr auto kindNames = std::to_array<KindName>({{CommandKind::open, "open"},
                                                    {CommandKind::script, "script"},
                                                    {CommandKind::app, "app"},
                                                    {CommandKind::search, "search"},
                                                    {CommandKind::system, "system"},
                                                    {CommandKind::files, "files"},
                                                    {CommandKind::list, "list"},
                                                    {CommandKind::jump, "jump"}});

int nesting(std::string_view text) {
    int depth = 0;
    int deepest = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isInString) {
            if (c == '\\')
                ++i;
            isInString = c != '"';
            continue;
        }
        isInString = c == '"';
        if (c == '{' || c == '[')
            deepest = std::max(deepest, ++depth);
        else if (c == '}' || c == ']')
            --depth;
    }
    return deepest;
}

/// "[json.exception.parse_error.101] parse error at line 3, column 5: …" without its number.
std::string inWords(std::string_view what) {
    if (what.starts_with('[')) {
        const auto end = what.find("] ");
        if (end != std::string_view::npos)
            what.remove_prefix(end + 2);
    }
    return std::string(what);
}

/// Reads the members of one command; a single one that is not as it should be spoils it.
class Reader {
public:
    explicit Reader(const Json& object) : object_(object) {}

    bool isWhole() const { return isWhole_; }

    std::string required(const char* key) {
        auto value = optional<std::string>(key);
        isWhole_ = isWhole_ && value.has_value();
        return std::move(value).value_or(std::string());
    }

    template <typename Value> std::optional<Value> optional(const char* key) {
        const auto member = object_.find(key);
        if (member == object_.end() || member->is_null())
            return std::nullopt;
        if (!isA<Value>(*member)) {
            isWhole_ = false;
            return std::nullopt;
        }
        return member->get<Value>();
    }

private:
    template <typename Value> static bool isA(const Json& member) {
        if constexpr (std::is_same_v<Value, bool>)
            return member.is_boolean();
        else if constexpr (std::is_same_v<Value, std::string>)
            return member.is_string();
        else
            return member.is_array() && std::ranges::all_of(member, &Json::is_string);
    }

    const Json& object_;
    bool isWhole_ = true;
};

/// Every field that may be absent but the action, which has a name of its own: `visit(key, field)`.
template <typename Command, typename Visit> void visitOptional(Command& command, Visit visit) {
    visit("keyword", command.keyword);
    visit("urls", command.urls);
    visit("script", command.script);
    visit("shell", command.shell);
    visit("path", command.path);
    visit("url", command.url);
    visit("extensions", command.extensions);
    visit("foldersOnly", command.foldersOnly);
    visit("hotkey", command.hotkey);
    visit("aliases", command.aliases);
    visit("icon", command.icon);
    visit("onSelect", command.onSelect);
    visit("notes", command.notes);
    visit("press", command.press);
    visit("activate", command.activate);
    visit("source", command.source);
}

} // namespace

Json CommandJson::parsed(std::string_view text) {
    if (nesting(text) > deepestNesting)
        throw CommandFileError("it is nested too deeply");
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        throw CommandFileError(inWords(error.what()));
    }
}

std::int64_t CommandJson::version(const Json& root) {
    constexpr std::int64_t first = 1;
    constexpr auto largest = static_cast<double>(std::numeric_limits<std::int64_t>::max());
    const auto version = root.find("version");
    if (version == root.end())
        return first;
    if (version->is_number_unsigned())
        return std::in_range<std::int64_t>(version->get<std::uint64_t>())
                   ? version->get<std::int64_t>()
                   : first;
    if (version->is_number_integer())
        return version->get<std::int64_t>();
    if (!version->is_number_float())
        return first;
    const auto value = version->get<double>();
    return std::abs(value) < largest && value == std::floor(value)
               ? static_cast<std::int64_t>(value)
               : first;
}

std::optional<CommandSpec> CommandJson::command(const Json& object) {
    if (!object.is_object())
        return std::nullopt;
    Reader reader(object);
    CommandSpec spec{.id = reader.required("id"), .name = reader.required("name")};
    visitOptional(spec, [&]<typename Value>(const char* key, std::optional<Value>& field) {
        field = reader.optional<Value>(key);
    });
    const auto kind = std::ranges::find(kindNames, reader.required("kind"), &KindName::name);
    const auto action = reader.optional<std::string>("action");
    if (action)
        spec.action = SystemActions::named(*action);
    if (!reader.isWhole() || kind == kindNames.end() || (action && !spec.action))
        return std::nullopt;
    spec.kind = kind->kind;
    return spec;
}

std::string_view CommandJson::kindName(CommandKind kind) {
    return kindNames[static_cast<std::size_t>(kind)].name;
}

Json CommandJson::encoded(const CommandSpec& command) {
    Json object = {{"id", command.id}, {"name", command.name}, {"kind", kindName(command.kind)}};
    if (command.action)
        object["action"] = SystemActions::name(*command.action);
    visitOptional(command, [&](const char* key, const auto& field) {
        if (field)
            object[key] = *field;
    });
    return object;
}

} // namespace tessarine
