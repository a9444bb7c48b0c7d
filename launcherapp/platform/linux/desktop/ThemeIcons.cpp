#include "launcherapp/platform/linux/desktop/ThemeIcons.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/desktop/QtImages.h"
#include "launcherapp/platform/linux/desktop/SymbolDrawing.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tessarine {

namespace {

/// A picture that would take more memory than this is no icon: 64 MB of pixels.
constexpr std::int64_t mostPixels = std::int64_t{16} << 20;
/// The theme every other one falls back to (freedesktop.org's icon theme standard).
constexpr auto lastTheme = "hicolor";

bool canDraw() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

/// In the middle of a transparent square, as large as fits.
QImage squared(const QImage& picture, int side) {
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    const auto fitted =
        picture.size() == QSize(side, side)
            ? picture
            : picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter(&square).drawImage((side - fitted.width()) / 2, (side - fitted.height()) / 2, fitted);
    return square;
}

QImage fromFile(const QString& path, int side) {
    // Opening a pipe or a device would wait, or do something.
    if (!QFileInfo(path).isFile())
        return {};
    QImageReader reader(path);
    reader.setAutoTransform(true);
    // A drawing is rendered at the size wanted; a photograph is scaled while it is read.
    const auto natural = reader.size();
    const bool isDrawing = reader.format().startsWith("svg");
    if (!isDrawing && std::int64_t{natural.width()} * natural.height() > mostPixels)
        return {};
    if (natural.isValid())
        reader.setScaledSize(natural.scaled(side, side, Qt::KeepAspectRatio));
    return reader.read();
}

QImage fromTheme(QString name, int side) {
    // Older entries name a file of the pixmaps folder with its ending.
    for (const auto* ending : {".png", ".svg", ".xpm"}) {
        if (name.endsWith(QLatin1String(ending)))
            name.chop(4);
    }
    return QIcon::fromTheme(name).pixmap(QSize(side, side), 1.0).toImage();
}

int pixels(int sizePoints, double scale) {
    return std::max(1, static_cast<int>(std::lround(sizePoints * scale)));
}

} // namespace

ThemeIcons::ThemeIcons(const Environment& environment) {
    if (!canDraw())
        return;
    auto themes = QIcon::themeSearchPaths();
    auto loose = QIcon::fallbackSearchPaths();
    auto folders = environment.dataDirs;
    folders.insert(folders.begin(), environment.dataHome);
    for (const auto& folder : folders) {
        const auto path = QString::fromStdString(folder);
        themes.append(path + QStringLiteral("/icons"));
        loose.append(path + QStringLiteral("/pixmaps"));
    }
    themes.append(QString::fromStdString(environment.home) + QStringLiteral("/.icons"));
    themes.removeDuplicates();
    loose.removeDuplicates();
    QIcon::setThemeSearchPaths(themes);
    QIcon::setFallbackSearchPaths(loose);
    QIcon::setFallbackThemeName(QLatin1String(lastTheme));
    if (QIcon::themeName().isEmpty())
        QIcon::setThemeName(QLatin1String(lastTheme));
}

std::optional<Image> ThemeIcons::icon(std::string_view nameOrPath, int sizePoints, double scale) {
    if (nameOrPath.empty() || !canDraw())
        return std::nullopt;
    const int side = pixels(sizePoints, scale);
    const auto name =
        QString::fromUtf8(nameOrPath.data(), static_cast<qsizetype>(nameOrPath.size()));
    const auto picture =
        name.startsWith(QLatin1Char('/')) ? fromFile(name, side) : fromTheme(name, side);
    if (picture.isNull())
        return std::nullopt;
    return imageOf(squared(picture, side), scale);
}

Image ThemeIcons::symbol(std::string_view name, int sizePoints, double scale) {
    if (!canDraw())
        return {};
    auto image = imageOf(SymbolDrawing::mask(name, pixels(sizePoints, scale)), scale);
    image.isMask = true;
    return image;
}

} // namespace tessarine
