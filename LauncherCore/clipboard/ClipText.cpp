#include "LauncherCore/clipboard/ClipText.h"

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
    content.text = Folding::isUtf8(text) ? std::move(text) : Folding::repairedUtf8(text);
    content.characters = Graphemes::count(content.text);
    auto folded = Folding::fold(content.text);
    // A text may have millions of characters, and those of many programs have no capital letter.
    if (folded != content.text)
        content.folded = std::move(folded);
    content_ = std::make_shared<const Content>(std::move(content));
}

} // namespace tessarine
