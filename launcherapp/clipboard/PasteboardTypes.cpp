#include "launcherapp/clipboard/PasteboardTypes.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Urls.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view uriList = "text/uri-list";
constexpr std::string_view copiedFiles = "x-special/gnome-copied-files";
constexpr std::string_view utf8String = "UTF8_STRING";
constexpr std::string_view plainUtf8 = "text/plain;charset=utf-8";
constexpr std::string_view plain = "text/plain";
constexpr std::string_view latin1String = "STRING"; // ICCCM 2.6.2
constexpr std::string_view anyText = "TEXT";
constexpr std::string_view png = "image/png";

constexpr auto fileTypes = std::to_array<std::string_view>({uriList, copiedFiles});
constexpr auto textTypes =
    std::to_array<std::string_view>({utf8String, plainUtf8, plain, latin1String});
/// Those without loss first. Some programs offer the names from before a type was registered, and
/// nothing else.
constexpr auto pictureTypes = std::to_array<std::string_view>({png,
                                                               "image/x-png",
                                                               "image/tiff",
                                                               "image/bmp",
                                                               "image/x-bmp",
                                                               "image/x-ms-bmp",
                                                               "image/jpeg",
                                                               "image/jpg"});

/// A name as the tables have it: programs write media types in any case, with blanks and quotes.
std::string normalized(std::string_view type) {
    if (type.find('/') == std::string_view::npos)
        return std::string(type);
    std::string result;
    for (const char c : type) {
        if (c == ' ' || c == '"')
            continue;
        result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

bool holds(PasteboardTypes::Names types, std::string_view name) {
    return std::ranges::find(types, name) != types.end();
}

std::optional<std::string> best(PasteboardTypes::Names types,
                                std::span<const std::string_view> wanted) {
    for (const auto name : wanted) {
        const auto found = std::ranges::find(types, name, normalized);
        if (found != types.end())
            return *found;
    }
    return std::nullopt;
}

std::string fromLatin1(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
            continue;
        }
        text += static_cast<char>(0xc0 | (byte >> 6));
        text += static_cast<char>(0x80 | (byte & 0x3f));
    }
    return text;
}

/// Programs that know nothing but Latin-1 are old, and old programs paste no longer texts.
constexpr std::size_t longestLatin1 = std::size_t{64} << 10; ///< bytes of UTF-8

/// Nothing when a character lies beyond U+00FF, for what is no UTF-8, and for a long text.
std::optional<std::string> toLatin1(std::string_view text) {
    if (text.size() > longestLatin1)
        return std::nullopt;
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            bytes += text[i];
            continue;
        }
        const bool isLatin1 = (byte == 0xc2 || byte == 0xc3) && i + 1 < text.size() &&
                              (static_cast<unsigned char>(text[i + 1]) & 0xc0) == 0x80;
        if (!isLatin1)
            return std::nullopt;
        bytes += static_cast<char>((byte << 6) | (static_cast<unsigned char>(text[++i]) & 0x3f));
    }
    return bytes;
}

/// The path of one line of a file list; nothing for what names no file of this machine, and for a
/// name with a line feed, which a list of one path a line can't hold.
std::optional<std::string> pathOf(std::string_view line) {
    constexpr std::string_view file = "file";
    const auto scheme = Urls::scheme(line);
    if (!Folding::isAscii(scheme) || Folding::lowercase(scheme) != file)
        return std::nullopt;
    auto path = Urls::filePath(std::string(file).append(line.substr(file.size())));
    if (path && path->find('\n') != std::string::npos)
        return std::nullopt;
    return path;
}

// Both types of file lists hold a URL a line: RFC 2483, 5 with comments and ends of lines as on the
// net; the other begins with a line that says "copy" or "cut", which is no URL.

/// Takes the first line off.
std::string_view nextLine(std::string_view& bytes) {
    const auto end = std::min(bytes.find('\n'), bytes.size());
    auto line = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    // A program or two counts the zero that ends its string.
    while (!line.empty() && (line.back() == '\r' || line.back() == '\0'))
        line.remove_suffix(1);
    return line;
}

/// The lines that are URLs, joined with line feeds.
std::string addresses(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const auto line = nextLine(bytes);
        if (!line.starts_with('#') && Urls::withScheme(line))
            text.append(text.empty() ? "" : "\n").append(line);
    }
    return text;
}

PasteboardContent::Item item(std::string_view type, std::string bytes) {
    return {.type = std::string(type),
            .bytes = std::make_shared<const std::string>(std::move(bytes))};
}

void addText(PasteboardContent& content, const std::shared_ptr<const std::string>& text) {
    for (const auto type : {utf8String, plainUtf8, plain})
        content.items.push_back({.type = std::string(type), .bytes = text});
    auto narrow = text;
    if (!Folding::isAscii(*text)) {
        auto latin1 = toLatin1(*text);
        if (!latin1)
            return;
        narrow = std::make_shared<const std::string>(*std::move(latin1));
    }
    for (const auto type : {anyText, latin1String})
        content.items.push_back({.type = std::string(type), .bytes = narrow});
}

} // namespace

std::optional<std::string_view> PasteboardTypes::secretMarker(Names types) {
    if (holds(types, concealed) || holds(types, passwordManagerHint))
        return "concealed";
    if (holds(types, transient))
        return "transient";
    if (holds(types, autoGenerated))
        return "auto-generated";
    return std::nullopt;
}

bool PasteboardTypes::isRemote(Names types) {
    return holds(types, remote);
}

std::optional<std::string> PasteboardTypes::filesType(Names types) {
    return best(types, fileTypes);
}

std::optional<std::string> PasteboardTypes::textType(Names types) {
    return best(types, textTypes);
}

std::optional<std::string> PasteboardTypes::pictureType(Names types) {
    return best(types, pictureTypes);
}

std::vector<std::string> PasteboardTypes::paths(std::string_view bytes) {
    std::vector<std::string> paths;
    while (!bytes.empty()) {
        if (auto path = pathOf(nextLine(bytes)))
            paths.push_back(*std::move(path));
    }
    return paths;
}

std::string PasteboardTypes::text(std::string_view type, std::string bytes) {
    if (type == latin1String)
        return fromLatin1(bytes);
    if (best(std::array{std::string(type)}, fileTypes))
        bytes = addresses(bytes);
    if (Folding::isUtf8(bytes))
        return bytes; // moved, however long
    return Folding::repairedUtf8(bytes);
}

PasteboardContent PasteboardTypes::ofText(std::shared_ptr<const std::string> text) {
    PasteboardContent content;
    addText(content, text);
    return content;
}

PasteboardContent PasteboardTypes::ofText(std::string text) {
    return ofText(std::make_shared<const std::string>(std::move(text)));
}

PasteboardContent PasteboardTypes::ofFiles(const std::vector<std::string>& paths) {
    std::string list;
    std::string copied = "copy";
    std::string text;
    for (const auto& path : paths) {
        const auto url = Urls::fileUrl(path);
        list.append(url).append("\r\n");
        copied.append("\n").append(url);
        text.append(text.empty() ? "" : "\n").append(path);
    }
    PasteboardContent content;
    content.items.push_back(item(uriList, std::move(list)));
    content.items.push_back(item(copiedFiles, std::move(copied)));
    addText(content, std::make_shared<const std::string>(std::move(text)));
    return content;
}

PasteboardContent PasteboardTypes::ofPicture(std::shared_ptr<const std::string> bytes) {
    return {.items = {{.type = std::string(png), .bytes = std::move(bytes)}}};
}

} // namespace tessarine
