#include "LauncherCore/clipboard/ClipText.h"

#include "LauncherCore/clipboard/ClipClassifier.h"
#include "LauncherCore/index/NameScan.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"

#include <utility>

namespace tessarine {

ClipText::ClipText()
    : content_([] {
          static const auto empty = std::make_shared<const Content>();
          return empty;
      }()) {}

ClipText::ClipText(std::string text) {
    Content content;
    const bool isSound = Folding::isAscii(text) || Folding::isUtf8(text);
    content.text = isSound ? std::move(text) : Folding::repairedUtf8(text);
    content.characters = Graphemes::count(content.text);
    content.isLink = ClipClassifier::isLink(content.text);
    auto folded = Folding::fold(content.text);
    // A text may have millions of characters, and those of many programs have no capital letter.
    if (folded != content.text)
        content.folded = std::move(folded);
    content_ = std::make_shared<const Content>(std::move(content));
}

bool ClipText::holds(std::string_view folded) const {
    return folded.empty() || NameScan::Finder(folded).next(this->folded(), 0).has_value();
}

} // namespace tessarine
