#include "launcherapp/index/IndexCache.h"

#include "LauncherCore/index/NameIndex.h"
#include "LauncherCore/text/Folding.h"

#include <array>
#include <simdjson.h>

namespace tessarine {

namespace {

/// What an ASCII byte is written as, where not as itself.
bool needsEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

void appendText(std::string& json, std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    json += '"';
    for (std::size_t from = 0; from < text.size();) {
        auto to = from;
        while (to < text.size() && !needsEscape(text[to]))
            ++to;
        json += text.substr(from, to - from);
        if (to == text.size())
            break;
        const auto byte = static_cast<unsigned char>(text[to]);
        if (byte >= 0x20) {
            json += '\\';
            json += text[to];
        } else {
            json += "\\u00";
            json += digits[byte >> 4];
            json += digits[byte & 0xf];
        }
        from = to + 1;
    }
    json += '"';
}

void appendItem(std::string& json, const ItemList& list, std::size_t index, std::string_view id) {
    json += "{\"id\":";
    appendText(json, id);
    json += ",\"name\":";
    appendText(json, list.name(index));
    json += ",\"norm\":";
    appendText(json, list.norm(index));
    json += list.isFolder(index) ? ",\"isFolder\":true,\"ext\":" : ",\"isFolder\":false,\"ext\":";
    appendText(json, list.ext(index));
    json += '}';
}

/// One item as the document has it; views into the parsed document.
struct StoredItem {
    std::optional<std::string_view> id;
    std::optional<std::string_view> name;
    std::optional<std::string_view> norm;
    std::optional<std::string_view> ext;
    std::optional<bool> isFolder;

    bool isWhole() const { return id && id->starts_with('/') && name && norm && ext && isFolder; }
};

template <typename Value> std::optional<Value> valueOf(simdjson::dom::element element) {
    Value value;
    return element.get(value) == simdjson::SUCCESS ? std::optional(value) : std::nullopt;
}

StoredItem storedItem(simdjson::dom::element element) {
    StoredItem item;
    simdjson::dom::object object;
    if (element.get(object) != simdjson::SUCCESS)
        return item;
    for (const auto field : object) {
        if (field.key == "id")
            item.id = valueOf<std::string_view>(field.value);
        else if (field.key == "name")
            item.name = valueOf<std::string_view>(field.value);
        else if (field.key == "norm")
            item.norm = valueOf<std::string_view>(field.value);
        else if (field.key == "isFolder")
            item.isFolder = valueOf<bool>(field.value);
        else if (field.key == "ext")
            item.ext = valueOf<std::string_view>(field.value);
    }
    return item;
}

/// A document is parsed in pieces of about this size, so that what the parser makes of it stays in
/// the processor's caches.
constexpr std::size_t pieceBytes = std::size_t{1} << 18;
/// Where a document may be parted: between two items as they are written here. Within a text the
/// quotation mark would have a backslash before it.
constexpr std::string_view seam = "},{\"id\":";

/// Whether the parser may read so far behind a piece as it likes to.
enum class Padding { present, missing };

/// Whether the piece, a whole array, was read.
bool readPiece(simdjson::dom::parser& parser,
               std::string_view piece,
               Padding padding,
               const std::function<bool(std::string_view id)>& isWanted,
               ItemList& items) {
    simdjson::dom::array array;
    if (parser.parse(piece.data(), piece.size(), padding == Padding::missing).get(array) !=
        simdjson::SUCCESS)
        return false;
    for (const auto element : array) {
        const auto item = storedItem(element);
        if (!item.isWhole())
            return false;
        if (isWanted(*item.id))
            items.add(*item.id, *item.name, *item.norm, *item.isFolder);
    }
    return true;
}

} // namespace

std::string IndexCache::document(const NameIndex& index) {
    // The keys and marks of one item, and about what its texts take.
    constexpr std::size_t expectedItemBytes = 180;
    std::string json;
    json.reserve(index.size() * expectedItemBytes);
    json += '[';
    std::string id;
    for (const auto& list : index.lists()) {
        for (std::size_t i = 0; i < list->size(); ++i) {
            list->assignID(i, id);
            if (!Folding::isUtf8(id) || !Folding::isUtf8(list->name(i)))
                continue;
            if (json.size() > 1)
                json += ',';
            appendItem(json, *list, i, id);
        }
    }
    json += ']';
    return json;
}

std::optional<ItemList>
IndexCache::items(std::string document, const std::function<bool(std::string_view id)>& isWanted) {
    const auto length = document.size();
    if (length == 0)
        return std::nullopt;
    simdjson::dom::parser parser;
    ItemList items;
    for (std::size_t begin = 0; begin < length;) {
        const std::string_view rest = document;
        const auto found = rest.find(seam, begin + pieceBytes);
        const bool isLast = found == std::string_view::npos;
        const auto comma = found + 1;
        const auto end = isLast ? length : comma + 1;
        const auto padding =
            end + simdjson::SIMDJSON_PADDING <= length ? Padding::present : Padding::missing;
        // The comma closes this piece, and then opens the next.
        if (!isLast)
            document[comma] = ']';
        if (!readPiece(parser, rest.substr(begin, end - begin), padding, isWanted, items))
            return std::nullopt;
        if (isLast)
            break;
        document[comma] = '[';
        begin = comma;
    }
    items.shrink();
    return items;
}

} // namespace tessarine
