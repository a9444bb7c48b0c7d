#pragma once

#include "launcherapp/panel/view/CommandKey.h"

#include <QString>
#include <QStringList>
#include <QWidget>
#include <optional>
#include <vector>

namespace tessarine {

class Prefs;
class SearchModel;
struct PanelStyle;

/// Where one is, and when it is asked, by the pointer over it or by Ctrl held, what the keys do
/// there. Main thread only.
class Footer : public QWidget {
    Q_OBJECT

public:
    enum class FooterState {
        collapsed, ///< where one is; nothing at all if the settings say so
        hints,     ///< every chord for the selected row, or for the open menu
    };

    struct Hint {
        QString label;
        QStringList keys;

        bool operator==(const Hint&) const = default;
    };

    Footer(QWidget* parent, SearchModel& model, const Prefs& prefs, const PanelStyle& style);

    void refresh();
    void setCommandKey(CommandKey key);
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
    std::vector<Hint> menuHints() const;
    std::vector<Hint> rowHints() const;
    QString place() const;

    SearchModel& model_;
    const Prefs& prefs_;
    const PanelStyle& style_;
    bool isHovered_ = false;
    CommandKey commandKey_ = CommandKey::up;
    std::optional<FooterState> held_;
};

} // namespace tessarine
