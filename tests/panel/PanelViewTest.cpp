#include "launcherapp/panel/view/FieldRow.h"
#include "launcherapp/panel/view/PanelRoot.h"
#include "launcherapp/panel/view/ShortcutSheet.h"
#include "launcherapp/panel/view/menus/PanelMenus.h"
#include "launcherapp/panel/view/rows/TextLine.h"
#include "tests/panel/PanelFixture.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QMouseEvent>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PanelViewTest : public PanelFixture {
protected:
    /// Within the list.
    void movePointer(const QPoint& place) {
        QMouseEvent event(
            QEvent::MouseMove, place, list().mapToGlobal(place), Qt::NoButton, {}, {});
        QApplication::sendEvent(&list(), &event);
    }

    /// A list at rest, in which a caret that blinks would be a difference too.
    void showTwoRows() {
        addRows({"alpha", "beta"});
        model.setQuery("a");
        fit();
        field().clearFocus();
        panel.root().settle(1);
    }

    /// Everything where two pictures of one size differ.
    static QRect difference(const QImage& before, const QImage& after) {
        QRect changed;
        for (int y = 0; y < before.height(); ++y) {
            for (int x = 0; x < before.width(); ++x) {
                if (before.pixel(x, y) != after.pixel(x, y))
                    changed |= QRect(x, y, 1, 1);
            }
        }
        return changed;
    }

    template <typename View> View& part() { return *panel.findChild<View*>(); }

    void click(QWidget& widget, const QPoint& place, Qt::MouseButton button = Qt::LeftButton) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, place, widget.mapToGlobal(place), button, button, {});
            QApplication::sendEvent(&widget, &event);
        }
    }

    QPoint fieldPlace() { return field().mapTo(&panel, QPoint()); }
};

TEST_F(PanelViewTest, theHeightIsThatOfItsParts) {
    EXPECT_EQ(panel.root().wantedHeight(), 97);
    for (int i = 1; i <= 12; ++i) {
        rows.push_back(row("row " + std::to_string(i)));
        model.setQuery("a");
        const int shown = std::min(i, 9);
        EXPECT_EQ(panel.root().wantedHeight(), 67 + 12 + 1 + 30 + shown * panel.rowHeight());
    }
    services.prefs.resultRows.set(5);
    EXPECT_EQ(panel.root().wantedHeight(), 67 + 12 + 1 + 30 + 5 * panel.rowHeight());
    const int before = panel.rowHeight();
    services.prefs.textScale.set(TextScale::large);
    EXPECT_GT(panel.rowHeight(), before);
}

TEST_F(PanelViewTest, theFieldStaysOnItsPixel) {
    const auto place = fieldPlace();
    const auto left = field().width();
    addRows({"alpha", "beta"});
    const auto settle = [&] {
        fit();
        drawn();
        return fieldPlace();
    };
    model.setQuery("a");
    EXPECT_EQ(settle(), place);
    model.openActions();
    EXPECT_EQ(settle(), place);
    model.closeActions();
    rows.clear();
    model.setQuery("b");
    EXPECT_EQ(settle(), place);
    panel.root().showSheet();
    EXPECT_EQ(settle(), place);
    EXPECT_EQ(field().width(), left);
    model.families.clipboard = [](std::string_view, const auto&) { return Rows(); };
    model.enterClipboardMode(); // with the mode's name at the far end
    EXPECT_EQ(settle(), place);
    EXPECT_LT(field().width(), left);
    // A window that is lower than all this wants is no reason either.
    panel.resize(panel.width(), 120);
    EXPECT_EQ(fieldPlace(), place);
}

TEST_F(PanelViewTest, anIconArrivesInItsPlaceAndMovesNothing) {
    services.install("atlas", "Atlas", "Icon=atlas-icon\n");
    services.startCatalog();
    services.platform.icons.known.insert("atlas-icon");
    field().clearFocus(); // a caret that blinks is a difference too
    drawn();
    panel.root().images().readAll(); // the symbols of the panel itself
    model.setQuery("atlas");
    ASSERT_EQ(model.rows().size(), 1u);
    fit();
    const auto before = drawn();
    EXPECT_THAT(services.platform.icons.drawn, IsEmpty());
    panel.root().images().readAll();
    EXPECT_THAT(services.platform.icons.drawn, ElementsAre("atlas-icon"));
    const auto changed = difference(before, drawn());
    const auto row = list().itemRectangle(0).translated(list().mapTo(&panel, QPoint()));
    const QRect slot(row.left() + PanelStyle::edge,
                     row.center().y() - PanelStyle::iconSide / 2,
                     PanelStyle::iconSide,
                     PanelStyle::iconSide + 1);
    EXPECT_FALSE(changed.isEmpty());
    EXPECT_TRUE(slot.contains(changed))
        << changed.left() << "," << changed.top() << " " << changed.width() << "x"
        << changed.height() << " slot " << slot.left() << "," << slot.top();
}

TEST_F(PanelViewTest, theSelectedRowIsAlwaysSeen) {
    for (int i = 0; i < 60; ++i)
        rows.push_back(row("row " + std::to_string(100 + i)));
    model.setQuery("a");
    fit();
    for (int i = 0; i < 59; ++i) {
        model.moveDown();
        EXPECT_FALSE(list().itemRectangle(list().currentItem()).isEmpty()) << i;
    }
    EXPECT_TRUE(list().itemRectangle(0).isEmpty());
    for (int i = 0; i < 59; ++i) {
        model.moveUp();
        EXPECT_FALSE(list().itemRectangle(list().currentItem()).isEmpty()) << i;
    }
    model.select(40);
    rows.resize(3); // another, shorter list with the same leader
    model.recompute();
    EXPECT_FALSE(list().itemRectangle(0).isEmpty());
}

TEST_F(PanelViewTest, clicksRunRowsAndOpenTheirMenus) {
    addRows({"alpha", "beta"});
    model.setQuery("a");
    fit();
    click(list(), list().itemRectangle(1).center());
    EXPECT_THAT(ran, ElementsAre("beta"));
    EXPECT_EQ(panel.focusWidget(), &field());

    click(list(), list().itemRectangle(0).center(), Qt::RightButton);
    EXPECT_EQ(model.selection(), 0u);
    ASSERT_FALSE(model.actions().empty());
    fit();
    auto& menu = part<ActionsMenuView>();
    EXPECT_TRUE(menu.isVisible());
    EXPECT_TRUE(panel.root().rect().contains(menu.geometry())); // no window of its own
    EXPECT_EQ(panel.focusWidget(), &field());
    const auto favorites = services.prefs.favorites().size();
    click(menu, menu.itemRectangle(0).center());
    EXPECT_EQ(services.prefs.favorites().size(), favorites + 1);
    EXPECT_FALSE(menu.isVisible());
}

TEST_F(PanelViewTest, aMenuHasRoomEvenBesideASingleRow) {
    addRows({"alpha"});
    model.families.menuActions = [](const ResultRow&) {
        std::vector<RowAction> many;
        for (int i = 0; i < 12; ++i)
            many.push_back(RowAction::make("Action " + std::to_string(i), [] {}));
        return many;
    };
    int told = 0;
    panel.onHeights = [&] { ++told; };
    model.setQuery("a");
    fit();
    told = 0;
    model.openActions();
    EXPECT_EQ(told, 1);
    EXPECT_GT(panel.heights().overlay, 0);
    auto& menu = part<ActionsMenuView>();
    // Where the screen has no more room it scrolls instead, and the current entry is seen.
    EXPECT_LT(menu.height(), menu.wantedSize().height());
    for (int i = 0; i < menu.itemCount(); ++i) {
        const auto seen = menu.itemRectangle(menu.currentItem());
        EXPECT_EQ(seen.height(), panel.root().style().menuItemHeight) << i;
        press(Qt::Key_Down);
    }
    fit();
    EXPECT_EQ(menu.height(), menu.wantedSize().height());
    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(panel.heights().overlay, 0);
}

TEST_F(PanelViewTest, theRoomOfAMenuIsNoneForMoreRows) {
    for (int i = 0; i < 12; ++i)
        rows.push_back(row("row " + std::to_string(i)));
    services.prefs.resultRows.set(2);
    model.families.menuActions = [](const ResultRow&) {
        return std::vector<RowAction>(9, RowAction::make("Action", [] {}));
    };
    model.setQuery("a");
    fit();
    const auto list = this->list().geometry();
    model.openActions();
    fit();
    EXPECT_GT(panel.root().height(), list.bottom() + panel.rowHeight());
    EXPECT_EQ(this->list().geometry(), list);
}

TEST_F(PanelViewTest, aPressBesideAnOpenMenuOnlyClosesIt) {
    addRows({"alpha", "beta"});
    model.setQuery("a");
    fit();
    model.openActions();
    click(list(), QPoint(20, list().itemRectangle(1).center().y()));
    EXPECT_THAT(model.actions(), IsEmpty());
    EXPECT_THAT(ran, IsEmpty());
    EXPECT_EQ(model.selection(), 0u);
    model.openActions();
    type(QStringLiteral("b")); // another list, of other rows
    EXPECT_THAT(model.actions(), IsEmpty());
}

TEST_F(PanelViewTest, aPartThatComesWithAModeHasItsSlot) {
    using Slot = PanelRoot::Slot;
    addRows({"alpha", "beta"});
    model.setQuery("a");
    fit();
    const auto place = fieldPlace();
    const auto whole = list().geometry();
    QLabel part(QStringLiteral("Preview"));

    panel.root().setAccessory(Slot::aboveList, &part);
    fit();
    EXPECT_EQ(panel.heights().headAbove, part.sizeHint().height());
    EXPECT_EQ(list().geometry().top(), whole.top() + part.sizeHint().height() + 1);
    EXPECT_EQ(list().height(), whole.height());
    panel.root().setAccessory(Slot::aboveList, nullptr);

    panel.root().setAccessory(Slot::belowList, &part);
    fit();
    EXPECT_EQ(list().geometry(), whole);
    EXPECT_EQ(part.geometry().top(), whole.bottom() + 2);
    panel.root().setAccessory(Slot::belowList, nullptr);

    panel.root().setAccessory(Slot::besideList, &part);
    fit();
    EXPECT_EQ(list().geometry().top(), whole.top());
    EXPECT_EQ(list().height(), whole.height());
    EXPECT_LT(list().geometry().right(), part.geometry().left());
    services.prefs.clipPreviewPlacement.set(ClipPreviewPlacement::left);
    EXPECT_LT(part.geometry().right(), list().geometry().left());
    EXPECT_EQ(fieldPlace(), place);
}

TEST_F(PanelViewTest, whereThePointerRestsAfterTypingNoRowIsMeant) {
    showTwoRows();
    const auto second = list().itemRectangle(1).center();
    movePointer(second);
    movePointer(second + QPoint(1, 0));
    rows[1].id = "row:other"; // another row, that reads the same
    const auto lit = drawn();
    model.recompute();
    const auto changed = difference(lit, drawn());
    EXPECT_TRUE(changed.contains(second + list().mapTo(&panel, QPoint())));
}

TEST_F(PanelViewTest, thePointerAtRestMeansNoRow) {
    showTwoRows();
    const auto before = drawn();
    const auto second = list().itemRectangle(1).center();
    movePointer(second); // as the toolkit reports the pointer to a window that comes up under it
    EXPECT_EQ(drawn(), before);
    movePointer(second + QPoint(1, 0));
    EXPECT_NE(drawn(), before);
    EXPECT_EQ(model.selection(), 0u);
}

TEST_F(PanelViewTest, theFooterSaysWhatIsAskedOfIt) {
    auto& footer = panel.root().footer();
    const auto said = [&] {
        std::vector<std::string> result;
        for (const auto& hint : footer.hints())
            result.push_back(
                (hint.keys.join(QLatin1Char('+')) + QLatin1Char(' ') + hint.label).toStdString());
        return result;
    };
    EXPECT_THAT(said(), IsEmpty());
    auto first = row("alpha");
    first.secondary = [] {};
    first.secondaryLabel = "reveal";
    rows.push_back(first);
    model.setQuery("a");
    EXPECT_THAT(said(), IsEmpty()); // they stay out of the way until they are asked for
    press(Qt::Key_Control, Qt::ControlModifier);
    EXPECT_EQ(footer.state(), Footer::FooterState::hints);
    EXPECT_THAT(
        said(),
        ElementsAre("Enter Open", "Ctrl+Enter Reveal", "Ctrl+K Actions", "Ctrl+/ Shortcuts"));
    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_THAT(said(), ElementsAre("Enter Choose", "Esc Close")); // the menu has the keys
    press(Qt::Key_Escape);
    release(Qt::Key_Control);
    services.prefs.autoHideFooter.set(true);
    EXPECT_THAT(said(), IsEmpty());
    QEnterEvent enter({}, {}, {});
    QApplication::sendEvent(&footer, &enter);
    EXPECT_EQ(said().size(), 4u);
}

TEST_F(PanelViewTest, aPaletteArrivesEverywhereAtOnce) {
    field().clearFocus();
    addRows({"alpha"});
    model.setQuery("");
    fit();
    const auto ground = [&] { return drawn().pixelColor(panel.width() / 2, panel.height() / 2); };
    const auto light = ground();
    desktop.set(ColorScheme::dark);
    EXPECT_LT(ground().lightness(), light.lightness());
    EXPECT_EQ(field().palette().color(QPalette::Text), toQt(appearance.palette().fieldText));
}

TEST_F(PanelViewTest, withoutMixingItIsSquareAndOpaque) {
    panel.setBlending(PanelRoot::Blending::opaque);
    fit();
    const auto picture = drawn();
    EXPECT_EQ(panel.size(), panel.root().size());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ASSERT_EQ(picture.pixelColor(x, y).alpha(), 255) << x << " " << y;
    }
    panel.setBlending(PanelRoot::Blending::mixed);
    fit();
    EXPECT_EQ(drawn().pixelColor(0, 0).alpha(), 0);
}

TEST_F(PanelViewTest, theShadowGoesOnInWhatTheRoundedCornersLeaveFree) {
    const auto whole = drawn();
    const auto inside = panel.panelRectangle();
    const auto outside = inside.adjusted(-1, -1, 1, 1);
    const std::pair<QPoint, QPoint> corners[] = {{inside.topLeft(), outside.topLeft()},
                                                 {inside.topRight(), outside.topRight()},
                                                 {inside.bottomLeft(), outside.bottomLeft()},
                                                 {inside.bottomRight(), outside.bottomRight()}};
    for (const auto& [within, beside] : corners) {
        SCOPED_TRACE(testing::PrintToString(std::pair(within.x(), within.y())));
        EXPECT_GT(whole.pixelColor(beside).alpha(), 0);
        EXPECT_NEAR(whole.pixelColor(within).alpha(), whole.pixelColor(beside).alpha(), 12);
        // The same when a part of the panel that has the corner in it is drawn anew.
        QImage part(1, 1, QImage::Format_ARGB32_Premultiplied);
        part.fill(Qt::transparent);
        panel.render(&part, QPoint(), QRect(within, QSize(1, 1)), QWidget::DrawChildren);
        EXPECT_EQ(part.pixelColor(0, 0), whole.pixelColor(within));
    }
}

TEST_F(PanelViewTest, foreignNamesAreDrawnWithinTheirRows) {
    std::string tower = "a";
    for (int i = 0; i < 300; ++i)
        tower += "\u0301";
    addRows({std::string(5000, 'w'),
             "\u202Eevil\u202E",
             tower,
             "שלום עולם and English, mixed 123",
             "\x01\x02\x03\n\n\n",
             "👩\u200D👩\u200D👦\u200D👦 family"});
    model.setQuery("a");
    fit();
    drawn();
    for (const double width : {0.0, 1.0, 7.0, 100.0, 400.0}) {
        for (const auto& each : rows) {
            TextLine line;
            line.set({.text = each.title, .font = panel.root().style().title, .width = width});
            const QFontMetricsF metrics(panel.root().style().title);
            EXPECT_LE(line.width(), std::max(width, metrics.horizontalAdvance(QChar(0x2026))) + 1);
        }
    }
}

TEST_F(PanelViewTest, mirroredItIsTheSamePanelFromTheOtherSide) {
    addRows({"alpha"});
    model.setQuery("");
    model.setQuery("a");
    fit();
    panel.setLayoutDirection(Qt::RightToLeft);
    const auto place = field().geometry();
    EXPECT_EQ(part<FieldRow>().width() - place.right() - 1, PanelStyle::textStart - 2);
    EXPECT_TRUE(field().alignment().testFlag(Qt::AlignRight));
    model.openActions();
    EXPECT_LT(part<ActionsMenuView>().geometry().center().x(), panel.root().width() / 2);
}

TEST_F(PanelViewTest, theSheetListsEveryChordOnceByItsLinuxNames) {
    const auto& sheet = part<ShortcutSheet>();
    panel.onPreview = [] {};
    std::size_t chords = 0;
    for (const auto& line : sheet.lines()) {
        chords += line.chords.size();
        for (const auto& keys : line.chords)
            EXPECT_FALSE(keys.contains(QString())) << line.label.toStdString();
    }
    EXPECT_EQ(chords, PanelKeys::chords().size() - 8); // the nine digits stand as one
    EXPECT_EQ(sheet.lines().back().chords.front(),
              (QStringList{QStringLiteral("Ctrl"),
                           QStringLiteral("1"),
                           QStringLiteral("…"),
                           QStringLiteral("9")}));
    press(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_TRUE(panel.root().isSheetShown());
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel.root().isSheetShown());
    EXPECT_EQ(dismissals, 0);

    panel.onPreview = {}; // nothing to look at rows with
    for (const auto& line : sheet.lines())
        EXPECT_FALSE(line.label.startsWith(QStringLiteral("Quick Look")));
}

TEST_F(PanelViewTest, theNextKeyTakesTheSheetAwayAndDoesWhatItAlwaysDoes) {
    addRows({"alpha", "beta"});
    model.setQuery("a");
    const auto onSheet = [&](const std::function<void()>& act) {
        press(Qt::Key_Slash, Qt::ControlModifier);
        EXPECT_TRUE(panel.root().isSheetShown());
        act();
        EXPECT_FALSE(panel.root().isSheetShown());
    };
    onSheet([&] { type(QStringLiteral("l")); });
    EXPECT_EQ(model.query(), "al");
    onSheet([&] { press(Qt::Key_Down); });
    EXPECT_EQ(model.selection(), 1u);
    onSheet([&] { press(Qt::Key_K, Qt::ControlModifier); });
    EXPECT_FALSE(model.actions().empty());
    onSheet([&] { press(Qt::Key_Slash, Qt::ControlModifier); });
}

TEST_F(PanelViewTest, aCreditIsLookedUpOnlyForARowThatIsSeen) {
    for (int i = 0; i < 20; ++i) {
        const auto scheme = "scheme" + std::to_string(i);
        services.install(
            scheme, "Opener", "Icon=" + scheme + "\nMimeType=x-scheme-handler/" + scheme + ";\n");
        services.platform.icons.known.insert(scheme);
        rows.push_back(row("row " + std::to_string(100 + i)));
        rows.back().credit = RowCreditSpec::forURLString(scheme + ":x");
    }
    services.startCatalog();
    model.setQuery("a");
    fit();
    panel.root().settle(1);
    EXPECT_EQ(services.platform.icons.drawn.size(), 9u);
}

TEST_F(PanelViewTest, aCreditHasItsNameFromTheFirstPaintAndItsIconMovesNothing) {
    services.install(
        "fox", "A Browser With A Long Name", "Icon=fox\nMimeType=x-scheme-handler/https;\n");
    services.platform.icons.known.insert("fox");
    services.startCatalog();
    rows.push_back(row("alpha"));
    rows.back().credit = RowCreditSpec::forURLString("https://a");
    field().clearFocus(); // a caret that blinks is a difference too
    model.setQuery("a");
    fit();
    drawn();
    panel.root().images().readAll(); // the row's symbol, and the credit's icon
    services.platform.icons.known.erase("fox");
    PanelRoot& root = panel.root();
    const auto with = drawn();
    root.images().readAll();
    const auto changed = difference(with, drawn());
    EXPECT_TRUE(changed.isEmpty());
}

} // namespace
} // namespace tessarine
