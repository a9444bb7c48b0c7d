#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"

#include <QRect>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <optional>

namespace tessarine {

class HotkeyRecorder;

/// The field of a HotkeyRecorder: a click or Return begins to record, and losing the focus ends
/// it. Looks as the desktop's own fields do. It takes the recorder's `onChange` for itself. For
/// the window of settings, which is not built yet. Main thread only; the recorder outlives it.
class RecorderView : public QWidget {
    Q_OBJECT

public:
    /// The chord that a key event is, by the display's numbers, as HotkeyRegistrar::chord has it.
    using ChordOf =
        std::function<std::optional<HotkeyBinding>(std::uint32_t key, std::uint32_t state)>;

    RecorderView(HotkeyRecorder& recorder, ChordOf chordOf, QWidget* parent = nullptr);
    ~RecorderView() override;

    QSize sizeHint() const override;

    /// Where a click takes the chord away; empty where that is not offered.
    QRect clearArea() const;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void takeChange();

    HotkeyRecorder& recorder_;
    ChordOf chordOf_;
};

} // namespace tessarine
