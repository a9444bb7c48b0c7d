#include "LauncherCore/text/Urls.h"

#include <algorithm>

namespace tessarine {

namespace {

constexpr std::string_view fileScheme = "file:";
constexpr std::string_view authority = "//"; ///< before a host, or none
constexpr std::string_view localHost = "localhost";

/// What stands in a URL as it is beside the unreserved characters (RFC 3986, 2.2), and the sign of
/// what is encoded already.
constexpr std::string_view reservedAndPercent = ":/?#[]@!$&'()*+,;=%";

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isUnreserved(char c) {
    return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

/// RFC 3986, 3.1
bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

/// The value of a hexadecimal digit; -1 for any other character.
int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

/// Everything but unreserved characters and those of `kept` percent-encoded.
std::string encoded(std::string_view text, std::string_view kept) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        if (isUnreserved(c) || kept.find(c) != std::string_view::npos) {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += '%';
        result += digits[byte >> 4];
        result += digits[byte & 0xf];
    }
    return result;
}

} // namespace

std::string Urls::fileUrl(std::string_view path) {
    return std::string(fileScheme) + std::string(authority) + encoded(path, "/");
}

std::string Urls::queryValue(std::string_view text) {
    return encoded(text, "");
}

std::optional<std::string> Urls::filePath(std::string_view url) {
    if (!url.starts_with(fileScheme))
        return std::nullopt;
    url.remove_prefix(fileScheme.size());
    if (url.starts_with(authority)) {
        url.remove_prefix(authority.size());
        if (url.starts_with(localHost))
            url.remove_prefix(localHost.size());
    }
    url = url.substr(0, url.find_first_of("?#"));
    if (!url.starts_with('/'))
        return std::nullopt;
    std::string path;
    for (std::size_t i = 0; i < url.size(); ++i) {
        if (url[i] != '%' || i + 2 >= url.size()) {
            path += url[i];
            continue;
        }
        const int high = hexDigit(url[i + 1]);
        const int low = hexDigit(url[i + 2]);
        if (high < 0 || low < 0) {
            path += url[i];
            continue;
        }
        path += static_cast<char>(high * 16 + low);
        i += 2;
    }
    if (path.find('\0') != std::string::npos)
        return std::nullopt;
    return path;
}

std::optional<std::string> Urls::withScheme(std::string_view text) {
    const auto name = scheme(text);
    if (!isScheme(name) || std::ranges::any_of(text, isControl))
        return std::nullopt;
    std::string url(name);
    for (char& c : url) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return url + encoded(text.substr(name.size()), reservedAndPercent);
}

std::string_view Urls::scheme(std::string_view url) {
    const auto colon = url.find(':');
    return colon == std::string_view::npos ? std::string_view() : url.substr(0, colon);
}

} // namespace tessarine
