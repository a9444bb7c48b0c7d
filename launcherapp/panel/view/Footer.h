#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <optional>
#include <vector>

namespace tessarine {

class Prefs;
class SearchModel;
struct PanelStyle;

/// What the selected row can do. Quiet until it is asked: by the pointer over it, or by Ctrl held.
/// Main thread only.
class Footer : public QWidget {
    Q_OBJECT

public:
    enum class FooterState {
        collapsed, ///< what Return does; nothing at all if the settings say so
        hints,     ///< every chord for the selected row
    };

    struct Hint {
        QString label;
        QStringList keys;

        bool operator==(const Hint&) const = default;
    };

    Footer(QWidget* parent, SearchModel& model, const Prefs& prefs, const PanelStyle& style);

    void refresh();
    void setCommandHeld(bool held);
    /// Holds it in one state, for a picture; nothing lets it follow the pointer.
    void hold(std::optional<FooterState> state);

    FooterState state() const;
    /// As they are shown, in reading order.
    std::vector<Hint> hints() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QString place() const;

    SearchModel& model_;
    const Prefs& prefs_;
    const PanelStyle& style_;
    bool isHovered_ = false;
    bool isCommandHeld_ = false;
    std::optional<FooterState> held_;
};

} // namespace tessarine
