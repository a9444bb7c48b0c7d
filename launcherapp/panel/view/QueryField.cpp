#include "launcherapp/panel/view/QueryField.h"

#include "LauncherCore/text/Printable.h"
#include "launcherapp/panel/view/KeyTranslation.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QPointer>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <algorithm>

namespace tessarine {

namespace {

/// Longer than any query anyone means, and short enough to lay out at every key.
constexpr int longestText = 10000;
/// More presses than can be under way at a time.
constexpr std::size_t mostArrived = 64;

bool beginsComposition(int key) {
    return key == Qt::Key_Multi_key ||
           (key >= Qt::Key_Dead_Grave && key <= Qt::Key_Dead_Longsolidusoverlay);
}

bool isModifier(int key) {
    return (key >= Qt::Key_Shift && key <= Qt::Key_Alt) || key == Qt::Key_AltGr;
}

/// Pasted lines become one; what can't be seen can't be searched for either. Joiners and marks of
/// direction are left, since their language is typed with them.
QString oneLine(QString text) {
    for (auto& character : text) {
        if (character.category() == QChar::Other_Control ||
            character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            character = QLatin1Char(' ');
    }
    return text;
}

} // namespace

QueryField::QueryField(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setAccessibleName(QStringLiteral("Search"));
    setMaxLength(longestText);
    align();
    // Its menu would be a popup of the toolkit, which takes the keyboard away from the panel.
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
    connect(this, &QLineEdit::textEdited, this, &QueryField::edited);
}

void QueryField::setQuery(const std::string& query) {
    const auto wanted = Drawing::toQt(query);
    if (wanted == text())
        return;
    ++revision_;
    const QSignalBlocker quiet(this);
    setText(wanted);
}

void QueryField::restyle(const PanelStyle& style) {
    setFont(style.field);
    auto colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, toQt(style.palette.fieldText));
    colors.setColor(QPalette::PlaceholderText, toQt(style.palette.placeholder));
    colors.setColor(QPalette::Highlight, toQt(style.palette.textSelection));
    colors.setColor(QPalette::HighlightedText, toQt(style.palette.fieldText));
    setPalette(colors);
}

void QueryField::edited(const QString& text) {
    if (!isPasting_)
        ++revision_;
    if (const auto clean = oneLine(text); clean != text) {
        const auto caret = cursorPosition();
        const QSignalBlocker quiet(this);
        setText(clean);
        setCursorPosition(caret);
    }
    if (typed)
        typed(this->text().toStdString());
}

bool QueryField::offer(const QKeyEvent& event) {
    if (const auto* chord = KeyTranslation::chord(event)) {
        // What is selected in the field is what the user means to copy.
        if (chord->action == PanelKeyAction::copy && hasSelectedText())
            return false;
        return chordPressed && chordPressed(*chord);
    }
    const auto command = KeyTranslation::fieldCommand(event, layoutDirection());
    if (!command || !perform)
        return false;
    const bool isAtEnd = !hasSelectedText() && cursorPosition() == text().size();
    return perform(*command, isAtEnd ? CaretPlace::atEnd : CaretPlace::inside);
}

void QueryField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Control)
        tell(CommandKey::down);
    // What reaches us in the middle of a composition broke it off: it is no command then.
    const bool hasKept = hasKeptKeyBefore(*event);
    const bool wasComposing = isComposing() || hasKept;
    if (!isModifier(event->key()))
        awaitsNextKey_ = false;
    lastPressed_ = event->key();
    if (wasComposing || !offer(*event)) {
        if (pasteText && event->matches(QKeySequence::Paste))
            askForPaste();
        else
            QLineEdit::keyPressEvent(event);
    }
    // Nobody around the field has a use for a key that it doesn't know.
    event->accept();
}

void QueryField::askForPaste() {
    pasteText([field = QPointer(this), asked = revision_](const std::string& text) {
        // By then the panel may be gone, or show something else; a text that comes in the middle of
        // a word is worse than none.
        if (field && field->isVisible() && field->revision_ == asked && !field->isComposing())
            field->insertPasted(text);
    });
}

void QueryField::insertPasted(const std::string& pasted) {
    // A clipboard may hold millions of characters, and the field takes only so many.
    constexpr std::size_t mostBytes = std::size_t{4} * longestText;
    const QScopedValueRollback pasting(isPasting_, true);
    insert(oneLine(Drawing::toQt(Printable::beginning(pasted, mostBytes))));
}

/// The middle button pastes what is selected somewhere, and there is no way to that text but the
/// toolkit's, which stands still while the other program does.
void QueryField::mouseReleaseEvent(QMouseEvent* event) {
    if (pasteText && event->button() == Qt::MiddleButton)
        return event->accept();
    QLineEdit::mouseReleaseEvent(event);
}

void QueryField::keyArrives(std::uint32_t scanCode) {
    if (arrived_.size() == mostArrived)
        arrived_.clear();
    arrived_.push_back(scanCode);
}

/// Whether a key that was sent before this one never came: a dead key, held down still, that waits
/// for its letter.
bool QueryField::hasKeptKeyBefore(const QKeyEvent& event) {
    const auto sent = std::ranges::find(arrived_, event.nativeScanCode());
    if (sent == arrived_.end())
        return false;
    if (isModifier(event.key())) {
        arrived_.erase(sent);
        return false;
    }
    const bool hasKept = sent != arrived_.begin();
    arrived_.erase(arrived_.begin(), sent + 1);
    return hasKept;
}

void QueryField::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Control)
        tell(CommandKey::up);
    // The toolkit keeps the press of a dead key to itself and shows nothing of it; all that is seen
    // of one is that it was let go, which may be after the key that it went with.
    const bool isPending =
        beginsComposition(event->key()) && lastPressed_ != event->key() && !hasJustComposed_;
    awaitsNextKey_ = awaitsNextKey_ || isPending;
    if (!beginsComposition(event->key()))
        hasJustComposed_ = false;
    QLineEdit::keyReleaseEvent(event);
}

void QueryField::inputMethodEvent(QInputMethodEvent* event) {
    preedit_ = event->preeditString();
    hasJustComposed_ = !event->commitString().isEmpty();
    awaitsNextKey_ = false;
    arrived_.clear();
    QLineEdit::inputMethodEvent(event);
}

void QueryField::tell(CommandKey key) {
    if (commandKeyMoved)
        commandKeyMoved(key);
}

/// What was pressed goes on in another window.
void QueryField::forgetKeys() {
    awaitsNextKey_ = false;
    hasJustComposed_ = false;
    arrived_.clear();
    tell(CommandKey::up);
}

void QueryField::focusOutEvent(QFocusEvent* event) {
    forgetKeys();
    QLineEdit::focusOutEvent(event);
}

void QueryField::hideEvent(QHideEvent* event) {
    ++revision_;
    forgetKeys();
    preedit_.clear();
    {
        // What was typed and deleted in this show is not to come back by an undo in the next.
        const QSignalBlocker quiet(this);
        setText(text());
    }
    QLineEdit::hideEvent(event);
}

void QueryField::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LayoutDirectionChange)
        align();
    QLineEdit::changeEvent(event);
}

/// At the panel's leading side whatever is typed: the toolkit would send a word of the other
/// direction to the far end.
void QueryField::align() {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    setAlignment((isMirrored ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
                 Qt::AlignVCenter);
}

bool QueryField::focusNextPrevChild(bool) {
    return false;
}

} // namespace tessarine
