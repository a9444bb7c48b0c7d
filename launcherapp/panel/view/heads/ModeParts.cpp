#include "launcherapp/panel/view/heads/ModeParts.h"

#include "launcherapp/panel/view/heads/CurrencyStrip.h"
#include "launcherapp/panel/view/heads/PersonHead.h"
#include "launcherapp/panel/view/preview/ClippingPreview.h"
#include "launcherapp/query/SearchModel.h"

#include <utility>

namespace tessarine {

ModeParts::ModeParts(PanelRoot& root,
                     const SearchModel& model,
                     const PanelStyle& style,
                     RowImages& images)
    : root_(root), model_(model), strip_(new CurrencyStrip(&root, style, images)),
      person_(new PersonHead(&root, style)), preview_(new ClippingPreview(&root, style, images)) {}

/// A slot that another part was put into stays that part's.
void ModeParts::put(PanelRoot::Slot slot, QWidget* part) {
    auto& last = put_[static_cast<std::size_t>(slot)];
    if (std::exchange(last, part) != part)
        root_.setAccessory(slot, part);
}

ModeParts::~ModeParts() {
    delete strip_;
    delete person_;
    delete preview_;
}

void ModeParts::refresh() {
    refreshHead();
    refreshPreview();
}

void ModeParts::refreshHead() {
    QWidget* head = nullptr;
    if (const auto& person = model_.personCache(); model_.personPath() && person) {
        person_->setPerson(*person);
        head = person_;
    } else if (const auto& money = model_.currencyReading()) {
        strip_->setReading(*money);
        head = strip_;
    }
    put(PanelRoot::Slot::aboveList, head);
}

void ModeParts::refreshPreview() {
    using enum PanelRoot::Slot;
    const auto* row = model_.clipboardMode() ? model_.selectedRow() : nullptr;
    auto preview = row ? rowsOf(model_.families.preview, *row) : std::nullopt;
    const auto placement = root_.previewPlacement();
    const bool isBelow = placement == ClipPreviewPlacement::below;
    const bool isShown = preview.has_value();
    if (preview) {
        preview_->setPreview(*std::move(preview));
        preview_->setPlacement(placement);
    }
    put(besideList, isShown && !isBelow ? preview_ : nullptr);
    put(belowList, isShown && isBelow ? preview_ : nullptr);
}

} // namespace tessarine
