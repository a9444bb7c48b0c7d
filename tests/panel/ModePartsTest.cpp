#include "LauncherCore/answers/Currency.h"
#include "launcherapp/panel/view/FieldRow.h"
#include "launcherapp/panel/view/PanelRoot.h"
#include "launcherapp/panel/view/heads/CurrencyStrip.h"
#include "launcherapp/panel/view/heads/PersonHead.h"
#include "launcherapp/panel/view/preview/ClippingPreview.h"
#include "tests/panel/PanelFixture.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QPaintEvent>

namespace tessarine {
namespace {

using testing::ElementsAre;

/// Counts how often a widget is painted.
class Paints : public QObject {
public:
    explicit Paints(QWidget& widget) { widget.installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::UpdateRequest || event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

class ModePartsTest : public PanelFixture {
protected:
    ModePartsTest() {
        model.families.answers = [this](std::string_view) {
            AnswerRows answers;
            answers.currencyReading = money;
            return answers;
        };
        addRows({"alpha", "beta"});
    }

    template <typename View> View& part() { return *panel.findChild<View*>(); }

    template <typename View> std::string spoken() {
        auto* seen = QAccessible::queryAccessibleInterface(&part<View>());
        EXPECT_EQ(seen->role(), QAccessible::StaticText);
        return seen->text(QAccessible::Name).toStdString();
    }

    void openCard(const std::string& name, const std::string& line = "") {
        model.families.personID = [](const ResultRow&) { return std::optional<std::string>("1"); };
        model.families.person = [=](const std::string& id) {
            return std::optional(PersonCard{.id = id, .name = name, .line = line});
        };
        model.families.personCard = [this](const std::string&, std::string_view query) {
            return query.empty() ? rows : Rows();
        };
        model.setQuery("a");
        model.runSelected();
        fit();
    }

    void openClipboard() {
        model.families.clipboard = [this](std::string_view, const auto&) { return rows; };
        model.families.preview = [this](const ResultRow& row) {
            return row.title == "alpha" ? preview : std::nullopt;
        };
        model.enterClipboardMode();
        fit();
    }

    QImage pictureOf(QWidget& part, const QSize& size) {
        part.resize(size);
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        part.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    }

    /// The smallest rectangle that holds all pixels that differ; empty for none.
    QRect difference(const QImage& one, const QImage& other) {
        QRect rectangle;
        for (int y = 0; y < one.height(); ++y) {
            for (int x = 0; x < one.width(); ++x) {
                if (one.pixel(x, y) != other.pixel(x, y))
                    rectangle |= QRect(x, y, 1, 1);
            }
        }
        return rectangle;
    }

    std::optional<CurrencyReading> money;
    std::optional<RowPreview> preview = RowPreview{PreviewText{"one\ntwo"}, {"7 characters"}};
};

TEST_F(ModePartsTest, theStripIsThereWhileTheTextIsAnAmount) {
    money = CurrencyReading{.amount = 20, .code = "EUR", .typed = "eur"};
    model.setQuery("20 eur");
    fit();
    auto& strip = part<CurrencyStrip>();
    EXPECT_TRUE(strip.isVisible());
    EXPECT_EQ(strip.y(), PanelStyle::headerHeight + 1);
    EXPECT_GT(list().y(), strip.geometry().bottom());
    EXPECT_EQ(spoken<CurrencyStrip>(), "20\u00A0EUR, Euro (EUR)");
    const auto withStrip = panel.root().wantedHeight();

    money->amount = 0.5;
    money->guessed = true;
    money->typed = "$";
    money->code = "CAD";
    model.recompute();
    EXPECT_EQ(spoken<CurrencyStrip>(), "0.5\u00A0CAD, Canadian Dollar (CAD) · from “$”");
    EXPECT_EQ(panel.root().wantedHeight(), withStrip);

    money.reset();
    model.recompute();
    EXPECT_FALSE(strip.isVisible());
    EXPECT_LT(panel.root().wantedHeight(), withStrip);
}

TEST_F(ModePartsTest, anEqualReadingIsNotDrawnAgain) {
    money = CurrencyReading{.amount = 20, .code = "EUR", .typed = "eur"};
    CurrencyStrip strip(nullptr, panel.root().style(), panel.root().images());
    strip.resize(400, strip.sizeHint().height());
    strip.setReading(*money);
    strip.show();
    QApplication::processEvents();
    Paints paints(strip);
    strip.setReading(*money);
    QApplication::processEvents();
    EXPECT_EQ(paints.count, 0);
    money->amount = 21;
    strip.setReading(*money);
    QApplication::processEvents();
    EXPECT_GT(paints.count, 0);
}

TEST_F(ModePartsTest, aCardSaysWhoseItIs) {
    openCard("Ada \u202EBell", "Printer");
    auto& head = part<PersonHead>();
    EXPECT_TRUE(head.isVisible());
    EXPECT_EQ(spoken<PersonHead>(), "Ada Bell, Printer");
    EXPECT_EQ(field().accessibleDescription().toStdString(), "Card of Ada Bell");
    EXPECT_FALSE(part<FieldRow>().chipRectangle().isEmpty());
    model.setQuery("nothing like it");
    ASSERT_EQ(model.rows().size(), 1u);
    EXPECT_EQ(model.rows().front().title, "Nothing here matches “nothing like it”");
    EXPECT_TRUE(head.isVisible());
    model.setQuery("");
    press(Qt::Key_Escape);
    EXPECT_FALSE(head.isVisible());
    EXPECT_EQ(field().accessibleDescription(), QString());
}

TEST_F(ModePartsTest, thePreviewFollowsTheSelectionAndTheSettings) {
    openClipboard();
    auto& shown = part<ClippingPreview>();
    EXPECT_TRUE(shown.isVisible());
    EXPECT_EQ(spoken<ClippingPreview>(), "Preview: one\ntwo, 7 characters");
    EXPECT_GT(shown.x(), list().geometry().right());
    // Two rows alone would leave it no room.
    EXPECT_EQ(panel.heights().previewBeside, shown.minimumSizeHint().height());
    for (int i = 0; i < 5; ++i)
        rows.push_back(row("more " + std::to_string(i)));
    model.recompute();
    EXPECT_GE(list().wantedHeight(), panel.heights().previewBeside);
    fit();

    services.prefs.clipPreviewPlacement.set(ClipPreviewPlacement::left);
    EXPECT_LT(shown.geometry().right(), list().x());
    services.prefs.clipPreviewPlacement.set(ClipPreviewPlacement::below);
    EXPECT_EQ(panel.heights().previewBelow, shown.sizeHint().height());
    fit();
    EXPECT_GT(shown.y(), list().geometry().bottom());

    model.moveDown();
    EXPECT_FALSE(shown.isVisible());
    EXPECT_EQ(list().width(), panel.root().width());
}

TEST_F(ModePartsTest, anyContentIsDrawnInAnyRoom) {
    auto picture = Image{.widthPixels = 300,
                         .heightPixels = 2,
                         .pixels = std::make_shared<const std::vector<std::uint32_t>>(600, ~0U)};
    auto mask = picture;
    mask.isMask = true;
    enum class Seen { something, nothing };

    struct Case {
        std::string name;
        RowPreview preview;
        Seen seen = Seen::something;
    };

    const Case cases[] = {
        {"a text with no end", {PreviewText{std::string(20000, 'w')}, {}}},
        {"signs that can't be seen", {PreviewText{"\x01\u202E\t\n\n\nא", true}, {"", "\n"}}},
        {"a line of a picture", {PreviewPicture{picture}, {"300 × 2"}}},
        {"a mask", {PreviewPicture{mask}, {}}},
        {"no picture", {PreviewPicture{}, {}}, Seen::nothing},
        {"more files than lines", {PreviewFiles{std::vector<std::string>(40, "/a/b")}, {}}},
        {"no file", {PreviewFiles{}, {}}, Seen::nothing},
    };
    preview = RowPreview{};
    services.prefs.clipPreviewPlacement.set(ClipPreviewPlacement::below);
    openClipboard();
    auto& shown = part<ClippingPreview>();
    const auto size = shown.size();
    constexpr QSize noRoom(3, 3);
    const auto empty = pictureOf(shown, size);
    const auto emptyWithoutRoom = pictureOf(shown, noRoom);
    for (const auto& [name, content, seen] : cases) {
        SCOPED_TRACE(name);
        shown.setPreview(content);
        const auto changed = difference(pictureOf(shown, size), empty);
        EXPECT_EQ(changed.isEmpty(), seen == Seen::nothing);
        // The edge between the part and the list, and the air to both sides, stay free.
        EXPECT_TRUE(QRect(QPoint(), size)
                        .adjusted(PanelStyle::edge, 2, -PanelStyle::edge, 0)
                        .contains(changed) ||
                    changed.isEmpty());
        EXPECT_TRUE(difference(pictureOf(shown, noRoom), emptyWithoutRoom).isEmpty());
    }
}

} // namespace
} // namespace tessarine
