#pragma once

#include "launcherapp/panel/view/CommandKey.h"
#include "launcherapp/query/PanelKeys.h"
#include "launcherapp/query/SearchModel.h"

#include <QLineEdit>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tessarine {

struct PanelStyle;

/// The field: the toolkit's own editor, with its input methods, dead keys, selection and undo. Each
/// key is offered to the panel before the editor acts on it; inside a composition all keys are the
/// input method's. Main thread only.
class QueryField : public QLineEdit {
    Q_OBJECT

public:
    explicit QueryField(QWidget* parent);

    /// False leaves the key to the editor.
    std::function<bool(FieldCommand command, CaretPlace caret)> perform;
    /// False leaves the key to the editor.
    std::function<bool(const PanelChord& chord)> chordPressed;
    /// After each change by the user; the text is one line, without control characters.
    std::function<void(const std::string& text)> typed;
    /// Asks for the clipboard's text and gives it to `arrived` later, on the main thread, or never.
    /// While it is empty the toolkit is asked, which waits for the clipboard's owner.
    std::function<void(std::function<void(std::string text)> arrived)> pasteText;
    /// Ctrl went down or up.
    std::function<void(CommandKey key)> commandKeyMoved;

    /// Shows the model's text, the caret at its end; nothing happens when it is shown already.
    void setQuery(const std::string& query);

    void restyle(const PanelStyle& style);

    /// The display has sent the press of a key, which comes as an event next, unless an input
    /// method or the toolkit's own composing keeps it. Where nobody tells, a dead key shows by its
    /// release alone.
    void keyArrives(std::uint32_t scanCode);

    /// Whether an input method or a dead key is waiting for more keys.
    bool isComposing() const { return !preedit_.isEmpty() || awaitsNextKey_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    /// Tab is the panel's.
    bool focusNextPrevChild(bool next) override;

private:
    bool offer(const QKeyEvent& event);
    void askForPaste();
    void insertPasted(const std::string& pasted);
    bool hasKeptKeyBefore(const QKeyEvent& event);
    void tell(CommandKey key);
    void forgetKeys();
    void edited(const QString& text);
    void align();

    QString preedit_;
    bool awaitsNextKey_ = false;   ///< a dead or Compose key is pending in the toolkit
    bool hasJustComposed_ = false; ///< and the keys that made it are still on their way up
    int lastPressed_ = 0;
    /// Goes up when the text becomes another than what a paste was asked for; pasting doesn't
    /// count.
    std::uint64_t revision_ = 0;
    bool isPasting_ = false;
    std::vector<std::uint32_t> arrived_; ///< presses that are sent and have not come as events
};

} // namespace tessarine
