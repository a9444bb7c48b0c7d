#include "launcherapp/platform/linux/desktop/SymbolDrawing.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QString>

// A static library's resources are known only once this has run; it must stand outside of any
// namespace.
static void makeSymbolsKnown() {
    Q_INIT_RESOURCE(symbols);
}

namespace tessarine {

namespace {

constexpr auto placeholder = "app";
constexpr auto missingPlaceholder = "app.dashed";

QString resource(std::string_view name) {
    static const bool known = (makeSymbolsKnown(), true);
    Q_UNUSED(known);
    return QStringLiteral(":/tessarine/symbols/") +
           QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) +
           QStringLiteral(".svg");
}

/// The drawings are black on nothing, and white where something is cut out of the black.
QImage inkOnly(QImage picture) {
    picture.convertTo(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            line[x] = qRgba(0, 0, 0, qAlpha(line[x]) - qRed(line[x]));
    }
    return picture;
}

} // namespace

bool SymbolDrawing::exists(std::string_view name) {
    return !name.empty() && name.find('/') == std::string_view::npos &&
           QFile::exists(resource(name));
}

QImage SymbolDrawing::mask(std::string_view name, int side) {
    if (!exists(name))
        name = name.ends_with(".dashed") ? missingPlaceholder : placeholder;
    QImageReader reader(resource(name), "svg");
    reader.setScaledSize(QSize(side, side));
    auto picture = reader.read();
    if (picture.isNull()) {
        // Qt's reader of drawings is a plug-in, and this machine lacks it.
        picture = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
    }
    return inkOnly(std::move(picture));
}

} // namespace tessarine
