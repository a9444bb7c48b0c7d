#include "launcherapp/panel/view/QueryField.h"

#include "tests/panel/PanelFixture.h"

#include <gmock/gmock.h>

#include <QClipboard>
#include <QMouseEvent>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QueryFieldTest : public PanelFixture {
protected:
    QueryFieldTest() {
        addRows({"alpha", "beta", "gamma"});
        type(QStringLiteral("a"));
    }
};

TEST_F(QueryFieldTest, keysMoveAndRunWhileTheFieldKeepsTheFocus) {
    EXPECT_EQ(model.query(), "a");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Up);
    EXPECT_EQ(model.selection(), 1u);
    press(Qt::Key_Return);
    EXPECT_THAT(ran, ElementsAre("beta"));
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(ran.size(), 2u);
    press(Qt::Key_Tab);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(panel.focusWidget(), &field());
    press(Qt::Key_Escape);
    EXPECT_EQ(dismissals, 1);
    EXPECT_EQ(field().text(), QStringLiteral("a")); // the hide resets it, no key does
}

TEST_F(QueryFieldTest, arrowsGoInAtTheEndOfTheTextAndElseMoveTheCaret) {
    std::string browsed;
    model.families.folderPath = [](const ResultRow& row) {
        return row.title == "alpha" ? std::optional<std::string>("/home/u/alpha") : std::nullopt;
    };
    model.families.browse = [&](const std::string& folder, std::string_view) {
        browsed = folder;
        return Rows{row("inside")};
    };
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    EXPECT_EQ(field().cursorPosition(), 1); // the caret moved
    EXPECT_EQ(browsed, "");
    press(Qt::Key_Right);
    EXPECT_EQ(browsed, "/home/u/alpha");
    EXPECT_EQ(field().text(), QString());
    press(Qt::Key_Left);
    EXPECT_EQ(browsed, "/home/u");

    panel.setLayoutDirection(Qt::RightToLeft);
    press(Qt::Key_Escape);
    type(QStringLiteral("a"));
    browsed.clear();
    press(Qt::Key_Right);
    EXPECT_EQ(browsed, ""); // inward is the other way there
    press(Qt::Key_End);
    press(Qt::Key_Left);
    EXPECT_EQ(browsed, "/home/u/alpha");
}

TEST_F(QueryFieldTest, chordsAskForWhatTheyAreFor) {
    std::vector<std::string> asked;
    const auto note = [&](const char* name) { return [&asked, name] { asked.push_back(name); }; };
    panel.onCommandReturn = note("second");
    panel.onActions = note("actions");
    panel.onFavorite = note("favorite");
    panel.onCopy = note("copy");
    panel.onCopyField = note("copy field");
    panel.onSettings = note("settings");
    panel.onShortcuts = note("shortcuts");
    panel.onPreview = note("preview");
    panel.onDigit = [&](int digit) { asked.push_back("row " + std::to_string(digit)); };

    const auto ctrl = Qt::ControlModifier;

    const struct {
        int key;
        Qt::KeyboardModifiers modifiers;
        quint32 scanCode;
        const char* asked;
        const char* reason;
    } cases[] = {
        {Qt::Key_Return, ctrl, 0, "second", ""},
        {Qt::Key_K, ctrl, 0, "actions", "not the editor's cut to the end"},
        {Qt::Key_D, ctrl, 0, "favorite", "not the editor's delete"},
        {Qt::Key_C, ctrl, 0, "copy", ""},
        {Qt::Key_C, ctrl | Qt::MetaModifier, 0, "copy field", "Control is Super"},
        {Qt::Key_Comma, ctrl, 0, "settings", ""},
        {Qt::Key_Slash, ctrl, 0, "shortcuts", ""},
        {Qt::Key_Slash, ctrl | Qt::ShiftModifier, 16, "shortcuts", "above 7, as in Germany"},
        {Qt::Key_Comma, ctrl | Qt::ShiftModifier, 0, "", "another chord"},
        {Qt::Key_K, ctrl | Qt::ShiftModifier, 0, "", "another chord"},
        {Qt::Key_Y, ctrl, 0, "preview", ""},
        {Qt::Key_Space, Qt::ShiftModifier, 0, "preview", ""},
        {Qt::Key_9, ctrl, 0, "row 9", ""},
        {Qt::Key_3, ctrl | Qt::KeypadModifier, 0, "row 3", "on the keypad too"},
        {Qt::Key_Ampersand, ctrl, 10, "row 1", "a French keyboard's first digit key"},
        {Qt::Key_0, ctrl, 19, "", "there is no row 0"},
        {Qt::Key_D, Qt::AltModifier, 0, "", "another modifier"},
    };

    for (const auto& [key, modifiers, scanCode, expected, reason] : cases) {
        asked.clear();
        press(key, modifiers, {}, scanCode);
        EXPECT_EQ(asked.empty() ? "" : asked.front(), expected) << key << ": " << reason;
    }
    EXPECT_EQ(field().text(), QStringLiteral("a")); // no chord types
}

TEST_F(QueryFieldTest, aChordThatNothingStandsBehindIsTheEditors) {
    press(Qt::Key_Space, Qt::ShiftModifier, QStringLiteral(" "));
    type(QStringLiteral("b"));
    EXPECT_EQ(model.query(), "a b");
}

TEST_F(QueryFieldTest, aLongListIsGoneThroughByPages) {
    for (int i = 0; i < 40; ++i)
        addRows({"row " + std::to_string(i)});
    model.recompute();
    const auto last = model.rows().size() - 1;

    const struct {
        int key;
        Qt::KeyboardModifiers modifiers;
        std::size_t selection;
    } cases[] = {
        {Qt::Key_PageDown, {}, 9},
        {Qt::Key_PageDown, {}, 18},
        {Qt::Key_PageUp, {}, 9},
        {Qt::Key_End, Qt::ControlModifier, last},
        {Qt::Key_PageDown, {}, last}, // no wrap
        {Qt::Key_Home, Qt::ControlModifier, 0},
        {Qt::Key_PageUp, {}, 0},
    };

    for (const auto& [key, modifiers, selection] : cases) {
        press(key, modifiers);
        EXPECT_EQ(model.selection(), selection) << key;
    }
    press(Qt::Key_Home); // without Ctrl it is the caret's
    EXPECT_EQ(field().cursorPosition(), 0);
    model.openActions();
    press(Qt::Key_PageDown);
    EXPECT_EQ(model.selection(), 0u);
}

TEST_F(QueryFieldTest, nothingComesBackByAnUndoInTheNextShow) {
    type(QStringLiteral("b"));
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    EXPECT_EQ(field().text(), QString());
    panel.hide();
    model.reset();
    panel.show();
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field().text(), QString());
}

TEST_F(QueryFieldTest, copyingTakesTheTextThatIsSelectedInTheField) {
    int copies = 0;
    panel.onCopy = [&] { ++copies; };
    field().selectAll();
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copies, 0);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("a"));
    field().deselect();
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copies, 1);
}

TEST_F(QueryFieldTest, aCompositionHasAllKeysToItself) {
    compose(QStringLiteral("に"));
    EXPECT_TRUE(field().isComposing());
    press(Qt::Key_Return);
    press(Qt::Key_Down);
    press(Qt::Key_Escape);
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_THAT(ran, IsEmpty());
    EXPECT_EQ(model.selection(), 0u);
    EXPECT_EQ(dismissals, 0);
    EXPECT_EQ(model.query(), "a"); // what is not committed is not searched for
    compose({}, QStringLiteral("日本"));
    EXPECT_EQ(model.query(), "a日本");
    press(Qt::Key_Return);
    EXPECT_EQ(ran.size(), 1u);
}

TEST_F(QueryFieldTest, returnAfterAHalfDoneDeadKeyDoesNotLaunch) {
    // The toolkit swallows the press of a dead key; only its release is seen.
    release(Qt::Key_Dead_Acute);
    EXPECT_TRUE(field().isComposing());
    press(Qt::Key_Return);
    EXPECT_THAT(ran, IsEmpty());
    press(Qt::Key_Return); // the one after it is meant
    EXPECT_EQ(ran.size(), 1u);

    release(Qt::Key_Multi_key);
    compose({}, QStringLiteral("é"));
    press(Qt::Key_Return);
    EXPECT_EQ(ran.size(), 2u);

    // Fast fingers let the dead key go after the letter.
    compose({}, QStringLiteral("é"));
    release(Qt::Key_Dead_Acute);
    release(Qt::Key_E);
    press(Qt::Key_Return);
    EXPECT_EQ(ran.size(), 3u);

    // A letter that doesn't go with it is typed.
    release(Qt::Key_Dead_Acute);
    type(QStringLiteral("x"));
    EXPECT_EQ(model.query(), "aééx");
}

TEST_F(QueryFieldTest, returnWhileADeadKeyIsDownDoesNotLaunch) {
    constexpr quint32 deadKey = 34;
    constexpr quint32 returnKey = 36;
    constexpr quint32 shiftKey = 50;
    const auto sendAndPress = [&](int key, quint32 scanCode) {
        field().keyArrives(scanCode);
        press(key, Qt::NoModifier, {}, scanCode);
    };
    field().keyArrives(deadKey); // the toolkit keeps it
    sendAndPress(Qt::Key_Shift, shiftKey);
    sendAndPress(Qt::Key_Return, returnKey);
    EXPECT_THAT(ran, IsEmpty());
    sendAndPress(Qt::Key_Return, returnKey); // the one after it is meant
    EXPECT_EQ(ran.size(), 1u);

    // The display may send several keys before the first of them comes.
    field().keyArrives(returnKey);
    field().keyArrives(returnKey);
    press(Qt::Key_Return, Qt::NoModifier, {}, returnKey);
    press(Qt::Key_Return, Qt::NoModifier, {}, returnKey);
    EXPECT_EQ(ran.size(), 3u);

    field().keyArrives(deadKey);
    field().keyArrives(26);
    compose({}, QStringLiteral("é"));
    sendAndPress(Qt::Key_Return, returnKey);
    EXPECT_EQ(ran.size(), 4u);

    field().keyArrives(deadKey); // and the panel goes away before its letter
    panel.hide();
    panel.show();
    sendAndPress(Qt::Key_Return, returnKey);
    EXPECT_EQ(ran.size(), 5u);
}

TEST_F(QueryFieldTest, pastesOfAnyKindBecomeOneLine) {
    const auto paste = [&](const QString& text) {
        field().selectAll();
        QApplication::clipboard()->setText(text);
        press(Qt::Key_V, Qt::ControlModifier);
        return model.query();
    };
    EXPECT_EQ(paste(QStringLiteral("one\ntwo\tthree")), "one two three");
    EXPECT_EQ(paste(QStringLiteral("a\u0007b\u202Ec")), "a b\u202Ec");
    const QString longest(5000, QLatin1Char('x'));
    EXPECT_EQ(paste(longest), longest.toStdString());
    EXPECT_EQ(field().text(), longest);
    drawn();
    press(Qt::Key_Backspace);
    EXPECT_EQ(model.query().size(), 4999u);
}

/// A clipboard whose owner takes its time.
class SlowPasteTest : public QueryFieldTest {
protected:
    SlowPasteTest() {
        QApplication::clipboard()->setText(QStringLiteral("read at once"));
        field().pasteText = [this](std::function<void(std::string)> arrived) {
            asked.push_back(std::move(arrived));
        };
    }

    void paste() { press(Qt::Key_V, Qt::ControlModifier); }

    std::vector<std::function<void(std::string)>> asked;
};

TEST_F(SlowPasteTest, theTextComesLater) {
    paste();
    press(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(model.query(), "a");
    ASSERT_EQ(asked.size(), 2u);
    asked[0]("one\ntwo\t");
    EXPECT_EQ(model.query(), "aone two ");
    asked[1]("\u00e9"); // a paste is no reason against the next
    EXPECT_EQ(model.query(), "aone two \u00e9");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(model.query(), "aone two \u00e9"); // it can be undone as any edit

    field().selectAll();
    paste();
    asked.back()(std::string(5000000, 'x'));
    EXPECT_EQ(field().text().size(), 10000);
    field().clear();
    paste();
    asked.back()("");
    EXPECT_EQ(field().text(), QString());
}

TEST_F(SlowPasteTest, aTextThatComesTooLateIsDropped) {
    const struct {
        const char* reason;
        std::function<void()> meanwhile;
    } cases[] = {
        {"typed on", [&] { type(QStringLiteral("b")); }},
        {"deleted", [&] { press(Qt::Key_Backspace); }},
        {"composing", [&] { compose(QStringLiteral("\u306b")); }},
        {"the model set another text", [&] { model.setQuery("completed"); }},
        {"hidden", [&] { panel.hide(); }},
        {"hidden and shown again",
         [&] {
             panel.hide();
             panel.show();
         }},
    };

    for (const auto& [reason, meanwhile] : cases) {
        compose({});
        panel.show();
        model.setQuery("start");
        paste();
        meanwhile();
        const auto before = field().text();
        asked.back()("late");
        EXPECT_EQ(field().text(), before) << reason;
    }
}

TEST_F(SlowPasteTest, theCaretMayMoveMeanwhile) {
    type(QStringLiteral("b"));
    paste();
    press(Qt::Key_Home);
    asked.back()("x");
    EXPECT_EQ(model.query(), "xab");
}

TEST_F(SlowPasteTest, theMiddleButtonAsksNobody) {
    QMouseEvent click(QEvent::MouseButtonRelease,
                      QPointF(5, 5),
                      field().mapToGlobal(QPointF(5, 5)),
                      Qt::MiddleButton,
                      Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&field(), &click);
    EXPECT_EQ(model.query(), "a");
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(QueryFieldTest, theModelsTextIsShownWithTheCaretAtItsEnd) {
    model.setQuery("completed ");
    EXPECT_EQ(field().text(), QStringLiteral("completed "));
    EXPECT_EQ(field().cursorPosition(), 10);
    field().setCursorPosition(3);
    model.recompute();
    EXPECT_EQ(field().cursorPosition(), 3); // nothing new to show
}

TEST_F(QueryFieldTest, deletingToTheStartIsOfferedToTheListFirst) {
    std::string removed;
    model.families.removeClipping = [&](const std::string& id) { removed = id; };
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(field().text(), QString()); // no clipping: the editor's own
    rows.front().id = "clip:7";
    type(QStringLiteral("b"));
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(removed, "7");
    EXPECT_EQ(field().text(), QStringLiteral("b"));
}

} // namespace
} // namespace tessarine
