#include "launcherapp/panel/PanelController.h"
#include "launcherapp/panel/view/ShortcutSheet.h"
#include "launcherapp/panel/view/menus/PanelMenus.h"
#include "tests/fakes/FakePanelDesk.h"
#include "tests/panel/PanelFixture.h"

#include <gmock/gmock.h>

#include <QLabel>

namespace tessarine {
namespace {

/// The view in the height that the controller gives it, on a screen of a size that the test says.
class ControlledPanelTest : public PanelFixture {
protected:
    ControlledPanelTest() {
        model.verbs.openSettings = [] {};
        model.verbs.openHealth = [] {};
        model.verbs.quitProgram = [] {};
        panel.onHeights = [this] { controller.setHeights(panel.heights()); };
        controller.setHeights(panel.heights());
        controller.show();
    }

    /// The view as large as the window is.
    PanelRoot& shown() {
        const auto frame = window.frame();
        const QSize inside(static_cast<int>(frame.width), static_cast<int>(frame.height));
        panel.resize(inside.grownBy(panel.contentsMargins()));
        drawn();
        return panel.root();
    }

    template <typename View> View& part() { return *panel.findChild<View*>(); }

    FakePanelDesk desk{services};
    FakePanelWindow& window = desk.window;
    PanelController controller{desk.controls(model)};
};

TEST_F(ControlledPanelTest, whatOpensOverAnEmptyListIsSeenWhole) {
    ASSERT_TRUE(model.rows().empty());
    EXPECT_EQ(shown().height(), 97);

    press(Qt::Key_K, Qt::ControlModifier);
    auto& menu = part<ActionsMenuView>();
    EXPECT_TRUE(shown().rect().contains(menu.geometry()));
    EXPECT_EQ(menu.height(), menu.wantedSize().height());
    EXPECT_GT(menu.itemCount(), 1);
    press(Qt::Key_Escape);
    EXPECT_EQ(shown().height(), 97);

    press(Qt::Key_Slash, Qt::ControlModifier);
    auto& sheet = part<ShortcutSheet>();
    EXPECT_TRUE(shown().rect().contains(sheet.geometry()));
    EXPECT_EQ(sheet.height(), sheet.wantedSize().height());
    press(Qt::Key_Escape);
    EXPECT_EQ(shown().height(), 97);

    QLabel head(QStringLiteral("20 €"));
    panel.root().setAccessory(PanelRoot::Slot::aboveList, &head);
    EXPECT_EQ(shown().height(), 97 + head.sizeHint().height() + 1);
    EXPECT_TRUE(shown().rect().contains(head.geometry()));
    EXPECT_FALSE(head.geometry().intersects(panel.root().footer().geometry()));
    panel.root().setAccessory(PanelRoot::Slot::aboveList, nullptr);
}

TEST_F(ControlledPanelTest, onASmallScreenTheListScrollsAndTheFooterStays) {
    for (int i = 0; i < 60; ++i)
        rows.push_back(row("row " + std::to_string(100 + i)));
    for (const double height : {480.0, 300.0, 200.0}) {
        SCOPED_TRACE(height);
        const Rectangle area{0, 0, 640, height};
        window.changeScreens({{.name = "small", .frame = area, .workArea = area, .isMain = true}});
        controller.hide();
        controller.show("a");
        ASSERT_EQ(model.rows().size(), 60u);
        EXPECT_LE(window.frame().bottom(), area.bottom() - 8);
        EXPECT_LE(window.frame().right(), area.right() - 8);
        auto& root = shown();
        EXPECT_EQ(root.footer().geometry().bottom(), root.rect().bottom());
        for (int i = 0; i < 59; ++i) {
            press(Qt::Key_Down);
            drawn();
            const auto current = list().itemRectangle(list().currentItem());
            EXPECT_EQ(current.height(), panel.rowHeight()) << i;
            EXPECT_TRUE(list().rect().contains(current)) << i;
        }
        press(Qt::Key_K, Qt::ControlModifier);
        const auto menu = part<ActionsMenuView>().geometry();
        EXPECT_TRUE(shown().rect().contains(menu));
        EXPECT_FALSE(menu.intersects(root.footer().geometry()));
        press(Qt::Key_Escape);
        press(Qt::Key_Slash, Qt::ControlModifier);
        EXPECT_TRUE(shown().rect().contains(part<ShortcutSheet>().geometry()));
        press(Qt::Key_Escape);
    }
}

} // namespace
} // namespace tessarine
