#include "launcherapp/platform/linux/desktop/SymbolDrawing.h"

#include <gtest/gtest.h>

#include <QImage>
#include <set>
#include <string>

namespace tessarine {
namespace {

/// Every name that rows, menus and credits use, by whose they are.
constexpr std::string_view used[] = {
    // applications, files, the web
    "app",
    "app.dashed",
    "folder",
    "doc",
    "link",
    "magnifyingglass",
    "desktopcomputer",
    // commands by their kind, and hints
    "terminal",
    "gearshape",
    "list.bullet",
    "arrow.up.forward.app",
    "text.cursor",
    "exclamationmark.triangle.fill",
    "face.smiling",
    "character.book.closed",
    "externaldrive",
    // the actions menu
    "star",
    "star.slash",
    "doc.on.doc",
    "trash",
    "xmark.circle",
    "eye.slash",
    "pencil",
    "stethoscope",
    "power",
    "arrow.down.circle",
    "pin",
    "pin.slash",
    "arrow.up.to.line",
    // answers
    "equal.circle",
    "percent",
    "divide",
    "x.squareroot",
    "function",
    "number",
    "calendar",
    "clock",
    "scalemass",
    "ruler",
    "drop",
    "thermometer.medium",
    "speedometer",
    "square.dashed",
    "arrow.left.arrow.right",
    "dollarsign.circle",
    // system commands
    "arrow.clockwise.circle",
    "arrow.clockwise.circle.fill",
    "power.circle.fill",
    "rectangle.portrait.and.arrow.right",
    "rectangle.portrait.and.arrow.right.fill",
    "lock",
    "moon",
    "display",
    "sparkles.tv",
    "trash.circle",
    "eject",
    "exclamationmark.octagon",
    "circle.lefthalf.filled",
    "circle.righthalf.filled",
    "moon.circle",
    "sun.max.circle",
    "airplane",
    "house",
    "arrow.triangle.2.circlepath",
    "mic",
    "mic.fill",
    "camera.viewfinder",
    "macwindow.badge.plus",
    "gearshape.fill",
    // windows
    "rectangle.lefthalf.filled",
    "rectangle.righthalf.filled",
    "rectangle.tophalf.filled",
    "rectangle.bottomhalf.filled",
    "rectangle.center.inset.filled",
    "rectangle.inset.filled",
    "macwindow",
    "macwindow.on.rectangle",
    // clippings
    "photo",
    "textformat",
    "tag",
    "arrow.triangle.turn.up.right.diamond",
    "bolt.horizontal.circle",
    "questionmark.folder",
    // people and tabs
    "phone",
    "message",
    "envelope",
    "bubble.left.and.text.bubble.right",
    "person.crop.circle",
    "person.crop.circle.badge.questionmark",
    "person.crop.circle.badge.exclamationmark",
    "lock.shield",
    // the panel itself
    "checkmark",
    "chevron.down",
    "doc.on.clipboard",
};

TEST(SymbolDrawing, everyNameThatIsUsedHasADrawingOfItsOwn) {
    std::set<std::string> drawings;
    for (const auto name : used) {
        EXPECT_TRUE(SymbolDrawing::exists(name)) << name;
        const auto mask = SymbolDrawing::mask(name, 32);
        const auto* bytes = reinterpret_cast<const char*>(mask.constBits());
        EXPECT_TRUE(drawings.emplace(bytes, static_cast<std::size_t>(mask.sizeInBytes())).second)
            << name << " looks like another";
    }
}

TEST(SymbolDrawing, drawingsKeepClearOfTheEdgeAndAreInkAlone) {
    for (const auto name : used) {
        const auto mask = SymbolDrawing::mask(name, 48);
        ASSERT_EQ(mask.size(), QSize(48, 48));
        int inked = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x) {
                const auto pixel = mask.pixelColor(x, y);
                EXPECT_EQ(pixel.red() + pixel.green() + pixel.blue(), 0) << name;
                inked += pixel.alpha() > 127;
                if (x < 2 || y < 2 || x > 45 || y > 45) {
                    EXPECT_EQ(pixel.alpha(), 0) << name << " at " << x << "," << y;
                }
            }
        }
        EXPECT_GT(inked, 60) << name;
    }
}

TEST(SymbolDrawing, aNameWithoutADrawingIsAPlainSquare) {
    EXPECT_EQ(SymbolDrawing::mask("no.such.symbol", 32), SymbolDrawing::mask("app", 32));
    EXPECT_EQ(SymbolDrawing::mask("no.such.dashed", 32), SymbolDrawing::mask("app.dashed", 32));
    EXPECT_EQ(SymbolDrawing::mask("../../etc/passwd", 32), SymbolDrawing::mask("app", 32));
}

} // namespace
} // namespace tessarine
