#include "LauncherCore/clipboard/ClipClassifier.h"

#include "LauncherCore/clipboard/ClipText.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/LineBreaks.h"

namespace tessarine {

namespace {

constexpr std::size_t tooLongForALink = 2048; // characters

} // namespace

bool ClipClassifier::isLink(std::string_view text) {
    const auto link = Folding::trimmed(text);
    if (!link.starts_with("http://") && !link.starts_with("https://"))
        return false;
    return !Graphemes::hasAtLeast(link, tooLongForALink) &&
           link.find(' ') == std::string_view::npos && !LineBreaks::hasAny(link);
}

ClipCategory ClipClassifier::category(ClipKind kind, const ClipText& text) {
    switch (kind) {
    case ClipKind::file:
        return ClipCategory::file;
    case ClipKind::image:
        return ClipCategory::image;
    case ClipKind::text:
        break;
    }
    return text.isLink() ? ClipCategory::link : ClipCategory::text;
}

} // namespace tessarine
