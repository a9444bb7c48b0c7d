#pragma once

#include "LauncherCore/answers/CurrencyReading.h"
#include "launcherapp/panel/view/items/SpokenPart.h"

#include <QString>

namespace tessarine {

class RowImages;
struct PanelStyle;

/// Above the list, how the typed amount of money was understood: flag or sign, the amount, its
/// currency and what that was read from. Main thread only.
class CurrencyStrip : public SpokenPart {
    Q_OBJECT

public:
    CurrencyStrip(QWidget* parent, const PanelStyle& style, RowImages& images);

    /// Nothing is drawn again for the reading that is shown already.
    void setReading(const CurrencyReading& reading);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const PanelStyle& style_;
    RowImages& images_;
    CurrencyReading reading_;
    QString flag_;
    QString amount_;
    QString detail_;
};

} // namespace tessarine
