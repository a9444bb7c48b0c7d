#include "LauncherCore/clipboard/ClipKinds.h"
#include "LauncherCore/clipboard/LineBreaks.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/Printable.h"

namespace tessarine {

namespace {

constexpr std::size_t tooLongForALink = 2048; // characters

bool isTooLong(std::string_view text) {
    if (text.size() < tooLongForALink) // a character takes at least a byte
        return false;
    // Millions of characters need not be counted to know that there are that many. Cutting off an
    // end makes no more characters than there were.
    constexpr std::size_t mostlyEnough = 16 * tooLongForALink; // bytes
    return Graphemes::count(Printable::beginning(text, mostlyEnough)) >= tooLongForALink ||
           Graphemes::count(text) >= tooLongForALink;
}

} // namespace

bool ClipClassifier::isLink(std::string_view text) {
    const auto link = Folding::trimmed(text);
    if (!link.starts_with("http://") && !link.starts_with("https://"))
        return false;
    return link.find(' ') == std::string_view::npos && !LineBreaks::hasAny(link) &&
           !isTooLong(link);
}

ClipCategory ClipClassifier::category(ClipKind kind, std::string_view text) {
    switch (kind) {
    case ClipKind::file:
        return ClipCategory::file;
    case ClipKind::image:
        return ClipCategory::image;
    case ClipKind::text:
        break;
    }
    return isLink(text) ? ClipCategory::link : ClipCategory::text;
}

} // namespace tessarine
