#include "launcherapp/query/rows/WebRows.h"

#include "LauncherCore/text/Scalars.h"
#include "LauncherCore/text/Urls.h"

#include <string>
#include <vector>

namespace tessarine {

namespace {

constexpr std::string_view searchAddress = "https://www.google.com/search?q=";

/// The pieces between full stops, empty ones left out.
std::vector<std::string_view> pieces(std::string_view text) {
    std::vector<std::string_view> result;
    while (!text.empty()) {
        const auto end = std::min(text.find('.'), text.size());
        if (end > 0)
            result.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

/// At least two characters, all of them letters.
bool isDomainEnding(std::string_view text) {
    std::size_t letters = 0;
    for (std::size_t i = 0; i < text.size(); ++letters) {
        const auto scalar = Scalars::at(text, i);
        if (!Scalars::isLetter(scalar.value))
            return false;
        i += scalar.bytes;
    }
    return letters >= 2;
}

std::function<void()> opening(const RowVerbs& verbs, std::string url) {
    return [open = verbs.openUrl, url = std::move(url)] {
        if (open)
            open(url);
    };
}

} // namespace

bool looksLikeURL(std::string_view text) {
    if (text.find(' ') != std::string_view::npos)
        return false;
    if (text.starts_with("http://") || text.starts_with("https://"))
        return true;
    const auto parts = pieces(text);
    return parts.size() >= 2 && isDomainEnding(parts.back());
}

ResultRow urlRow(std::string_view text, const RowVerbs& verbs) {
    const bool hasScheme = text.find("://") != std::string_view::npos;
    std::string url(hasScheme ? "" : "https://");
    url += text;
    return {
        .id = "url",
        .kind = RowKind::web,
        .title = "Open " + url,
        .subtitle = "opens the page",
        .symbol = "link",
        .primary = opening(verbs, url),
        .primaryLabel = "open",
        .url = url,
        .group = std::string(RowGroup::apps),
        .credit = RowCreditSpec::forURLString(url),
    };
}

ResultRow webRow(std::string_view text, const RowVerbs& verbs) {
    auto url = std::string(searchAddress) + Urls::queryValue(text);
    return {
        .id = "web",
        .kind = RowKind::web,
        .title = "Search the web for “" + std::string(text) + "”",
        .subtitle = "Google",
        .symbol = "magnifyingglass",
        .primary = opening(verbs, url),
        .primaryLabel = "search",
        .url = url,
        .group = std::string(RowGroup::web),
        .credit = RowCreditSpec{.value = RowCreditSpec::UrlHandler{"https"}},
    };
}

} // namespace tessarine
