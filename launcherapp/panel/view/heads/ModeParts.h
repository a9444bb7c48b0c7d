#pragma once

#include "launcherapp/panel/view/PanelRoot.h"

#include <array>

namespace tessarine {

class ClippingPreview;
class CurrencyStrip;
class PersonHead;
class RowImages;
class SearchModel;
struct PanelStyle;

/// The parts that come and go with what the list shows, each put into its slot of the panel while
/// the model has something for it. They are children of the panel. Main thread only.
class ModeParts {
public:
    ModeParts(PanelRoot& root,
              const SearchModel& model,
              const PanelStyle& style,
              RowImages& images);
    ~ModeParts();
    ModeParts(const ModeParts&) = delete;
    ModeParts& operator=(const ModeParts&) = delete;

    /// Takes over what the model has now.
    void refresh();

private:
    void refreshHead();
    void refreshPreview();
    void put(PanelRoot::Slot slot, QWidget* part);

    PanelRoot& root_;
    const SearchModel& model_;
    CurrencyStrip* strip_;
    PersonHead* person_;
    ClippingPreview* preview_;
    std::array<QWidget*, 3> put_{}; ///< what of these is in each slot; null for none
};

} // namespace tessarine
