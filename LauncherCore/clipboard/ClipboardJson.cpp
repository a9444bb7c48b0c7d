#include "LauncherCore/clipboard/ClipboardJson.h"

#include "LauncherCore/text/JsonFields.h"

#include <nlohmann/json.hpp>

#include <type_traits>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

/// Every field in the order in which it is written: `visit(key, field)`. Those that are optional
/// here may be absent from the document.
template <typename Entry, typename Visit> void visitEntry(Entry& entry, Visit visit) {
    visit("id", entry.id);
    visit("kind", entry.kind);
    visit("text", entry.text);
    visit("preview", entry.preview);
    visit("imageFile", entry.imageFile);
    visit("fullFile", entry.fullFile);
    visit("firstSeen", entry.firstSeen);
    visit("lastSeen", entry.lastSeen);
    visit("count", entry.count);
    visit("pinned", entry.pinned);
    visit("sourceApp", entry.sourceApp);
    visit("fromOtherDevice", entry.fromOtherDevice);
    visit("syncOrigin", entry.syncOrigin);
    visit("syncLamport", entry.syncLamport);
    visit("syncBlob", entry.syncBlob);
    visit("blobTooLarge", entry.blobTooLarge);
    visit("pastedInto", entry.pastedInto);
}

template <typename Blob, typename Visit> void visitBlob(Blob& blob, Visit visit) {
    visit("plain", blob.plain);
    visit("object", blob.object);
    visit("bytes", blob.bytes);
    visit("width", blob.width);
    visit("height", blob.height);
}

OrderedJson toJson(const ClipBlobRef& blob) {
    auto object = OrderedJson::object();
    visitBlob(blob, [&](const char* key, const auto& field) { object[key] = field; });
    return object;
}

template <typename Value> OrderedJson toJson(const Value& value) {
    if constexpr (std::is_same_v<Value, ClipKind>)
        return ClipKinds::rawValue(value);
    else if constexpr (std::is_same_v<Value, ClipText>)
        return value.string();
    else
        return value;
}

OrderedJson toJson(const ClipboardEntry& entry) {
    auto object = OrderedJson::object();
    visitEntry(entry, [&]<typename Field>(const char* key, const Field& field) {
        if constexpr (requires { field.has_value(); }) {
            if (field)
                object[key] = toJson(*field);
        } else {
            object[key] = toJson(field);
        }
    });
    return object;
}

/// Reads the objects of a document, and keeps in mind whether all of it was understood.
class Reader {
public:
    bool losesOld() const { return losesOld_; }

    /// Nothing when it isn't whole.
    std::optional<ClipboardHistory> history(Json& document) {
        JsonFields fields(document);
        auto* list = fields.member("entries");
        if (!list || !list->is_array())
            return std::nullopt;
        ClipboardHistory history;
        history.entries.reserve(list->size());
        for (auto& each : *list) {
            auto read = entry(each);
            if (!read)
                return std::nullopt;
            history.entries.push_back(*std::move(read));
        }
        note(fields);
        return history;
    }

private:
    void note(const JsonFields& fields) { losesOld_ = losesOld_ || fields.hasOthers(); }

    std::optional<ClipboardEntry> entry(Json& value) {
        JsonFields fields(value);
        ClipboardEntry entry;
        visitEntry(entry, [&]<typename Field>(const char* key, Field& field) {
            if constexpr (requires {
                              typename Field::value_type;
                              field.has_value();
                          })
                field = optional<typename Field::value_type>(fields, key);
            else
                field = fields.required(optional<Field>(fields, key));
        });
        note(fields);
        return fields.isWhole() ? std::optional(std::move(entry)) : std::nullopt;
    }

    template <typename Value> std::optional<Value> optional(JsonFields& fields, const char* key) {
        if constexpr (std::is_same_v<Value, ClipBlobRef>) {
            return blob(fields, key);
        } else if constexpr (std::is_same_v<Value, ClipKind>) {
            const auto name = fields.optional<std::string>(key);
            return name ? ClipKinds::kind(*name) : std::nullopt;
        } else if constexpr (std::is_same_v<Value, ClipText>) {
            auto text = fields.optional<std::string>(key);
            return text ? std::optional<ClipText>(*std::move(text)) : std::nullopt;
        } else {
            return fields.optional<Value>(key);
        }
    }

    std::optional<ClipBlobRef> blob(JsonFields& fields, const char* key) {
        auto* value = fields.member(key);
        if (!value)
            return std::nullopt;
        JsonFields its(*value);
        ClipBlobRef blob;
        visitBlob(blob, [&]<typename Field>(const char* name, Field& field) {
            field = its.required(its.optional<Field>(name));
        });
        if (!its.isWhole())
            fields.spoil();
        note(its);
        return blob;
    }

    bool losesOld_ = false;
};

} // namespace

std::string ClipboardJson::encoded(const ClipboardHistory& history) {
    std::string text = R"({"entries":[)";
    // One entry at a time, since copies of all texts at once may take a lot of memory. The names
    // of applications and files may be any bytes.
    for (const auto& entry : history.entries) {
        if (&entry != &history.entries.front())
            text += ',';
        text += toJson(entry).dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
    }
    text += "]}";
    return text;
}

std::optional<ClipboardJson::Decoded> ClipboardJson::decoded(std::string_view text) {
    auto document = Json::parse(text, nullptr, false);
    Reader reader;
    auto history = reader.history(document);
    if (!history)
        return std::nullopt;
    return Decoded{.history = *std::move(history), .losesOld = reader.losesOld()};
}

} // namespace tessarine
