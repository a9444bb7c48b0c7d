#include "launcherapp/sources/DemonstrationSources.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Graphemes.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/sources/DemonstrationPictures.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <memory>

namespace tessarine {

namespace {

constexpr std::string_view personPrefix = "person:";
constexpr std::string_view clippingPrefix = "clip:";
constexpr std::int64_t personScore = 400; ///< below an application of the same name

std::vector<PersonCard> inventedPeople() {
    using enum ContactField::Kind;
    return {
        {.id = "halloran",
         .name = "Wren Halloran",
         .line = "Boatbuilder, Tidewater Yard",
         .fields = {{"mobile", phone, "mobile", "+44 20 7946 0018", "+44 20 7946 0018"},
                    {"work", phone, "yard", "+44 20 7946 0152", "+44 20 7946 0152"},
                    {"email", email, "work", "wren@tidewater.example", "wren@tidewater.example"},
                    {"page", url, "home page", "tidewater.example", "tidewater.example"},
                    {"place", address, "yard", "3 Slipway Lane", "3 Slipway Lane, Saltmarsh"},
                    {"birthday", date, "birthday", "--05-14", "May 14"}},
         .photo = DemonstrationPictures::portrait()},
        {.id = "okafor",
         .name = "Imani Okafor",
         .line = "Fire warden",
         .fields = {{"mobile", phone, "mobile", "+44 20 7946 0961", "+44 20 7946 0961"}},
         .photo = {}},
    };
}

std::string_view symbolOf(ContactField::Kind kind) {
    using enum ContactField::Kind;
    switch (kind) {
    case phone:
        return "phone";
    case email:
        return "envelope";
    case url:
        return "link";
    case address:
        return "map";
    case date:
        return "calendar";
    case text:
        return "person";
    }
    return "person";
}

ResultRow::Action copying(const RowVerbs& verbs, const std::string& text) {
    return [copy = verbs.copyText, text] {
        if (copy)
            copy(text);
    };
}

Rows peopleRows(const std::vector<PersonCard>& people, std::string_view query) {
    Rows rows;
    for (const auto& person : people) {
        const auto match = Matcher::score(query, person.name);
        if (!query.empty() && !match)
            continue;
        rows.push_back({.id = std::string(personPrefix) + person.id,
                        .kind = RowKind::command,
                        .title = person.name,
                        .subtitle = person.line,
                        .image = person.photo,
                        .symbol = "person.crop.circle",
                        .primaryLabel = "open card",
                        .group = std::string(RowGroup::people),
                        .score = personScore});
    }
    return rows;
}

Rows fieldRows(const PersonCard& person, std::string_view query, const RowVerbs& verbs) {
    Rows rows;
    for (const auto& field : person.fields) {
        const bool isNamed = query.empty() || Matcher::score(query, field.label) ||
                             Matcher::score(query, field.display);
        if (!isNamed)
            continue;
        // It copies whatever it is: an invented number is not to be called.
        rows.push_back({.id = "field:" + field.id,
                        .kind = RowKind::command,
                        .title = field.display,
                        .subtitle = field.label,
                        .symbol = std::string(symbolOf(field.kind)),
                        .primary = copying(verbs, field.value),
                        .primaryLabel = "copy",
                        .group = std::string(RowGroup::people)});
    }
    return rows;
}

/// One invented copy.
struct Clipping {
    std::string id;
    std::string filter; ///< of the filter menu
    std::string title;
    std::string detail;
    std::string symbol;
    std::optional<std::string> glyph;
    RowPreview preview;
};

std::string lengthInWords(std::string_view text) {
    return fmt::format("{} characters", Graphemes::count(text));
}

std::vector<Clipping> inventedClippings() {
    constexpr std::string_view link = "https://tidewater.example/slipway";
    constexpr std::string_view letter =
        "Dear Wren,\n\nthe mooring by the lantern pier is free from the first of May. The tide "
        "table says that we can come in between ten and noon; later the bar is dry.\n\nBring the "
        "blue kite.\n\nImani";
    constexpr std::string_view code =
        "def tide(hours):\n    \"\"\"Height above the bar, in metres.\"\"\"\n"
        "    return 2.4 + 1.9 * cos(hours / 12.42 * tau)\n";
    return {
        {"1",
         "text",
         "Dear Wren, the mooring by the lantern pier is free from the first of May.",
         "Bluebird Mail · 2 min ago",
         "doc.text",
         std::nullopt,
         {RowPreview::Text{std::string(letter)},
          {lengthInWords(letter), "copied from Bluebird Mail"}}},
        {"2",
         "image",
         "Harbour at dusk",
         "Darkroom · 9 min ago",
         "photo",
         std::nullopt,
         {RowPreview::Picture{DemonstrationPictures::harbour()},
          {"480 × 300", "copied from Darkroom"}}},
        {"3",
         "link",
         std::string(link),
         "Firewheel · 40 min ago",
         "link",
         "↗",
         {RowPreview::Text{std::string(link)}, {lengthInWords(link), "copied from Firewheel"}}},
        {"4",
         "file",
         "Kite drawings and 2 more",
         "Harbour Files · 1 h ago",
         "doc.on.doc",
         "3",
         {RowPreview::Files{{"/demo/Documents/Kite drawings",
                             "/demo/Documents/Rhubarb tart.txt",
                             "/demo/Documents/Lantern parade.mp4"}},
          {"3 files", "copied from Harbour Files"}}},
        {"5",
         "text",
         "def tide(hours):",
         "Teletype · yesterday",
         "terminal",
         std::nullopt,
         {RowPreview::Text{.text = std::string(code), .isCode = true},
          {lengthInWords(code), "copied from Teletype"}}},
    };
}

/// What a copy of it puts on the clipboard, which takes text alone: of a picture there is its name.
std::string textOf(const Clipping& clipping) {
    const auto& content = clipping.preview.content;
    if (const auto* text = std::get_if<RowPreview::Text>(&content))
        return text->text;
    if (const auto* files = std::get_if<RowPreview::Files>(&content))
        return fmt::format("{}", fmt::join(files->paths, "\n"));
    return clipping.title;
}

Rows clippingRows(const std::vector<Clipping>& clippings,
                  std::string_view query,
                  const std::optional<std::string>& filter,
                  const RowVerbs& verbs) {
    Rows rows;
    for (const auto& clipping : clippings) {
        if ((filter && *filter != clipping.filter) ||
            (!query.empty() && !Matcher::score(query, clipping.title)))
            continue;
        const auto* picture = std::get_if<RowPreview::Picture>(&clipping.preview.content);
        rows.push_back({.id = std::string(clippingPrefix) + clipping.id,
                        .kind = RowKind::command,
                        .title = clipping.title,
                        .subtitle = clipping.detail,
                        .image = picture ? std::optional(picture->image) : std::nullopt,
                        .symbol = clipping.symbol,
                        .primary = copying(verbs, textOf(clipping)),
                        .primaryLabel = "copy",
                        .glyph = clipping.glyph});
    }
    return rows;
}

std::vector<FilterMenuItem> filters(const std::vector<Clipping>& clippings) {
    constexpr auto titles = std::to_array<std::pair<std::string_view, std::string_view>>(
        {{"text", "Text"}, {"link", "Links"}, {"image", "Images"}, {"file", "Files"}});
    std::vector<FilterMenuItem> items{{std::string(FilterMenuItem::everything),
                                       "Everything",
                                       static_cast<std::int64_t>(clippings.size())}};
    for (const auto& [key, title] : titles)
        items.push_back({std::string(key),
                         std::string(title),
                         std::ranges::count(clippings, key, &Clipping::filter)});
    return items;
}

} // namespace

void addDemonstrationSources(SearchModel& model) {
    auto& families = model.families;
    const auto people = std::make_shared<const std::vector<PersonCard>>(inventedPeople());
    families.person = [people](const std::string& id) -> std::optional<PersonCard> {
        const auto found = std::ranges::find(*people, id, &PersonCard::id);
        return found == people->end() ? std::nullopt : std::optional(*found);
    };
    families.people = [people](std::string_view query, ListMode) {
        return peopleRows(*people, query);
    };
    families.personID = [](const ResultRow& row) -> std::optional<std::string> {
        return row.id.starts_with(personPrefix) ? std::optional(row.id.substr(personPrefix.size()))
                                                : std::nullopt;
    };
    families.personCard = [&model](const std::string& id, std::string_view query) {
        const auto person = model.families.person(id);
        return person ? fieldRows(*person, query, model.verbs) : Rows();
    };

    const auto clippings = std::make_shared<const std::vector<Clipping>>(inventedClippings());
    families.clipboard = [clippings, &model](std::string_view query,
                                             const std::optional<std::string>& filter) {
        return clippingRows(*clippings, query, filter, model.verbs);
    };
    families.filterMenu = [clippings] { return filters(*clippings); };
    families.resolveFilter = [clippings](std::string_view argument) -> std::optional<std::string> {
        for (const auto& item : filters(*clippings)) {
            if (Matcher::normalize(item.title) == Matcher::normalize(argument))
                return item.key;
        }
        return std::nullopt;
    };
    families.preview = [clippings](const ResultRow& row) -> std::optional<RowPreview> {
        for (const auto& clipping : *clippings) {
            if (row.id == std::string(clippingPrefix) + clipping.id)
                return clipping.preview;
        }
        return std::nullopt;
    };
}

} // namespace tessarine
