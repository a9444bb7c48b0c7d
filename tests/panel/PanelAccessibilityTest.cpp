#include "launcherapp/panel/view/items/ItemView.h"
#include "launcherapp/panel/view/menus/PanelMenus.h"
#include "tests/linux/EventLoop.h"
#include "tests/panel/PanelFixture.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QAccessibleActionInterface>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;

/// What a screen reader was told: the item's name and the kind of event.
std::vector<std::string> told;

void note(QAccessibleEvent* event) {
    if (event->type() != QAccessible::ActiveDescendantChanged &&
        event->type() != QAccessible::Focus)
        return;
    auto* reached = event->accessibleInterface();
    if (reached && event->type() == QAccessible::ActiveDescendantChanged)
        told.push_back(reached->text(QAccessible::Name).toStdString());
}

class PanelAccessibilityTest : public PanelFixture {
protected:
    PanelAccessibilityTest() {
        before_ = QAccessible::installUpdateHandler(note);
        rows.push_back(row("alpha", "first letter"));
        rows.push_back(row("be\nta"));
        rows.push_back(row("gamma", "third"));
        model.setQuery("a");
        fit();
        told.clear();
    }

    ~PanelAccessibilityTest() override { QAccessible::installUpdateHandler(before_); }

    static void SetUpTestSuite() {
        // The toolkit tells nobody anything until the desktop's accessibility bus has answered.
        if (QGuiApplication::platformName() != QStringLiteral("offscreen"))
            spinUntil([] { return QAccessible::isActive(); });
    }

    static QAccessibleInterface& seen(QObject& object) {
        return *QAccessible::queryAccessibleInterface(&object);
    }

    static std::vector<std::string> names(QAccessibleInterface& parent) {
        std::vector<std::string> names;
        for (int i = 0; i < parent.childCount(); ++i)
            names.push_back(parent.child(i)->text(QAccessible::Name).toStdString());
        return names;
    }

private:
    QAccessible::UpdateHandler before_ = nullptr;
};

/// Events are told on a desktop alone.
#define NEEDS_A_DESKTOP                                                                            \
    if (!QAccessible::isActive())                                                                  \
    GTEST_SKIP() << "NOT MEASURED, there is no accessibility bus to tell"

TEST_F(PanelAccessibilityTest, theListHasItsRowsByName) {
    auto& results = seen(list());
    EXPECT_EQ(results.role(), QAccessible::List);
    EXPECT_EQ(results.text(QAccessible::Name), QStringLiteral("Results"));
    EXPECT_THAT(names(results), ElementsAre("alpha, first letter", "be ta", "gamma, third"));
    auto* second = results.child(1);
    EXPECT_EQ(second->role(), QAccessible::ListItem);
    EXPECT_EQ(second->parent(), &results);
    EXPECT_EQ(results.indexOfChild(second), 1);
    const auto middle = second->rect().center();
    EXPECT_EQ(results.childAt(middle.x(), middle.y()), second);
    EXPECT_EQ(results.child(3), nullptr);
}

TEST_F(PanelAccessibilityTest, theSelectedRowIsTheActiveDescendantOfAListThatTheFieldControls) {
    press(Qt::Key_Down);
    EXPECT_EQ(panel.focusWidget(), &field());
    auto& results = seen(list());
    EXPECT_EQ(results.focusChild(), results.child(1));
    EXPECT_TRUE(results.child(1)->state().selected);
    EXPECT_TRUE(results.child(1)->state().focused);
    EXPECT_FALSE(results.child(0)->state().selected);
    const auto relations = results.relations(QAccessible::Controlled);
    ASSERT_EQ(relations.size(), 1);
    EXPECT_EQ(relations.front().first, &seen(field()));
}

TEST_F(PanelAccessibilityTest, readersAreToldOfEachRowThatBecomesTheSelectedOne) {
    NEEDS_A_DESKTOP;
    press(Qt::Key_Down);
    EXPECT_THAT(told, ElementsAre("be ta"));
    told.clear();
    model.recompute(); // the same row reads the same
    EXPECT_THAT(told, ElementsAre());
    rows.front().title = "omega";
    model.setQuery("o");
    EXPECT_THAT(told, ElementsAre("omega, first letter"));
    told.clear();
    model.openActions();
    EXPECT_THAT(told, ElementsAre("Add to Favorites"));
}

TEST_F(PanelAccessibilityTest, aRowThatGoesIsNoLongerThere) {
    auto& results = seen(list());
    auto* third = results.child(2);
    EXPECT_TRUE(third->isValid());
    rows.resize(1);
    model.recompute();
    EXPECT_EQ(results.childCount(), 1);
    EXPECT_FALSE(third->isValid());
    EXPECT_EQ(third->text(QAccessible::Name), QString());
    EXPECT_TRUE(third->rect().isEmpty());
}

TEST_F(PanelAccessibilityTest, pressingARowRunsIt) {
    auto* action = seen(list()).child(2)->actionInterface();
    ASSERT_NE(action, nullptr);
    EXPECT_THAT(action->actionNames(), Contains(QAccessibleActionInterface::pressAction()));
    action->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(ran, ElementsAre("gamma"));
}

TEST_F(PanelAccessibilityTest, anOpenMenuTakesOver) {
    model.openActions();
    auto& menu = seen(*panel.findChild<ActionsMenuView*>());
    EXPECT_EQ(menu.role(), QAccessible::PopupMenu);
    EXPECT_THAT(names(menu), ElementsAre("Add to Favorites"));
    EXPECT_EQ(menu.child(0)->role(), QAccessible::MenuItem);
    EXPECT_EQ(menu.focusChild(), menu.child(0));
}

TEST_F(PanelAccessibilityTest, theFieldSaysWhatItIs) {
    EXPECT_EQ(seen(field()).role(), QAccessible::EditableText);
    EXPECT_EQ(seen(field()).text(QAccessible::Name), QStringLiteral("Search"));
    EXPECT_EQ(seen(field()).text(QAccessible::Value), QStringLiteral("a"));
}

} // namespace
} // namespace tessarine
