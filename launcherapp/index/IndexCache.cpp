#include "launcherapp/index/IndexCache.h"

#include "LauncherCore/index/NameIndex.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <simdjson.h>
#include <utility>

namespace tessarine {

namespace {

bool needsEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

/// The text as it stands between quotation marks.
std::string jsonText(std::string_view text) {
    if (std::ranges::none_of(text, needsEscape))
        return std::string(text);
    constexpr std::string_view digits = "0123456789abcdef";
    std::string json;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (!needsEscape(c)) {
            json += c;
        } else if (byte >= 0x20) {
            json += '\\';
            json += c;
        } else {
            json += "\\u00";
            json += digits[byte >> 4];
            json += digits[byte & 0xf];
        }
    }
    return json;
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

} // namespace

std::optional<std::string_view> IndexCache::Writer::next() {
    if (stage_ == Stage::ended)
        return std::nullopt;
    piece_.clear();
    if (stage_ == Stage::beginning)
        piece_ += '[';
    stage_ = Stage::items;
    const auto& lists = index_.lists();
    while (list_ < lists.size() && piece_.size() < pieceBytes) {
        if (item_ == lists[list_]->size()) {
            ++list_;
            item_ = 0;
            continue;
        }
        addItem(*lists[list_], item_++);
    }
    if (list_ == lists.size()) {
        piece_ += ']';
        stage_ = Stage::ended;
    }
    return piece_;
}

void IndexCache::Writer::enterDirectory(const ItemList& list, std::size_t item) {
    const std::pair place{&list, list.directory(item)};
    if (directoryOf_ == place)
        return;
    directoryOf_ = place;
    const auto path = list.directoryPath(place.second);
    directoryIsUtf8_ = Folding::isUtf8(path);
    directory_ = jsonText(path);
}

void IndexCache::Writer::addItem(const ItemList& list, std::size_t item) {
    enterDirectory(list, item);
    const auto rawName = list.name(item);
    if (!directoryIsUtf8_ || !Folding::isUtf8(rawName))
        return;
    if (!std::exchange(isFirst_, false))
        piece_ += ',';
    piece_ += "{\"id\":\"";
    piece_ += directory_;
    const auto name = jsonText(rawName);
    if (!list.isItself(item)) {
        piece_ += '/';
        piece_ += name;
    }
    piece_ += "\",\"name\":\"";
    piece_ += name;
    piece_ += "\",\"norm\":\"";
    piece_ += jsonText(list.norm(item));
    piece_ += list.isFolder(item) ? "\",\"isFolder\":true,\"ext\":\""
                                  : "\",\"isFolder\":false,\"ext\":\"";
    piece_ += jsonText(list.ext(item));
    piece_ += "\"}";
}

struct IndexCache::Reader::Parser {
    simdjson::dom::parser json;
};

IndexCache::Reader::Reader(IsWanted isWanted)
    : isWanted_(std::move(isWanted)), parser_(std::make_unique<Parser>()) {}

IndexCache::Reader::~Reader() = default;

bool IndexCache::Reader::take(std::string_view piece) {
    text_ += piece;
    if (!isWhole_ || text_.size() < pieceBytes)
        return isWhole_;
    const auto found = text_.rfind(seam);
    if (found == std::string::npos)
        return true; // written by somebody else: parsed whole in the end
    // The comma closes what is parsed now, and then opens the rest.
    const auto comma = found + 1;
    text_[comma] = ']';
    isWhole_ = parse(std::string_view(text_).substr(0, comma + 1));
    text_.erase(0, comma);
    text_.front() = '[';
    return isWhole_;
}

std::optional<ItemList> IndexCache::Reader::finish() {
    if (!isWhole_ || text_.empty() || !parse(text_))
        return std::nullopt;
    items_.shrink();
    return std::move(items_);
}

/// Whether the text is a whole array of items.
bool IndexCache::Reader::parse(std::string_view array) {
    simdjson::dom::array elements;
    // Parsed where it lies when the parser may read a little beyond it.
    const auto room = text_.capacity() - array.size();
    const bool isPadded = room >= simdjson::SIMDJSON_PADDING;
    if (parser_->json.parse(array.data(), array.size(), !isPadded).get(elements) !=
        simdjson::SUCCESS)
        return false;
    for (const auto element : elements) {
        const auto item = storedItem(element);
        if (!item.isWhole())
            return false;
        if (isWanted_(*item.id))
            items_.add(*item.id, *item.name, *item.norm, *item.isFolder);
    }
    return true;
}

} // namespace tessarine
