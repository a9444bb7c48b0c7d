#include "launcherapp/platform/linux/desktop/ThemeIcons.h"

#include "launcherapp/platform/Environment.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace tessarine {

namespace {

/// Drawn at twice the size in points, which is crisp on screens of double density and scales down
/// well on others.
constexpr int pixelsPerPoint = 2;
/// A picture that would take more memory than this is no icon.
constexpr int allocationLimitMegabytes = 64;
/// The theme every other one falls back to (Icon Theme Specification).
constexpr auto lastTheme = "hicolor";

struct SymbolIcon {
    std::string_view symbol;
    const char* iconName;
};

/// What icon themes call the symbols that rows use (Icon Naming Specification 0.8.90).
constexpr auto symbolIcons = std::to_array<SymbolIcon>({
    {"app", "application-x-executable"},
    {"arrow.up.forward.app", "go-jump"},
    {"calendar", "x-office-calendar"},
    {"character.book.closed", "accessories-dictionary"},
    {"desktopcomputer", "computer"},
    {"doc", "text-x-generic"},
    {"eject", "media-eject"},
    {"equal.circle", "accessories-calculator"},
    {"exclamationmark.triangle.fill", "dialog-warning"},
    {"folder", "folder"},
    {"gearshape", "preferences-system"},
    {"link", "insert-link"},
    {"list.bullet", "view-list"},
    {"lock", "system-lock-screen"},
    {"magnifyingglass", "system-search"},
    {"star", "starred"},
    {"star.slash", "non-starred"},
    {"terminal", "utilities-terminal"},
    {"trash", "user-trash"},
});

bool canDraw() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

Image fromQt(const QImage& picture) {
    const auto converted = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (converted.isNull())
        return {};
    const auto width = static_cast<std::size_t>(converted.width());
    const auto height = static_cast<std::size_t>(converted.height());
    std::vector<std::uint32_t> pixels(width * height);
    for (std::size_t row = 0; row < height; ++row)
        std::memcpy(pixels.data() + row * width,
                    converted.constScanLine(static_cast<int>(row)),
                    width * sizeof(std::uint32_t));
    return {.widthPixels = converted.width(),
            .heightPixels = converted.height(),
            .scale = pixelsPerPoint,
            .pixels = std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels))};
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

std::optional<Image> fromFile(const QString& path, int side) {
    // Opening a pipe or a device would wait, or do something.
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    QImageReader reader(path);
    reader.setAutoTransform(true);
    // A drawing is rendered at the size wanted; a photograph is scaled while it is read.
    const auto natural = reader.size();
    if (natural.isValid())
        reader.setScaledSize(natural.scaled(side, side, Qt::KeepAspectRatio));
    const auto picture = reader.read();
    if (picture.isNull())
        return std::nullopt;
    return fromQt(squared(picture, side));
}

std::optional<Image> fromTheme(const QString& name, int side) {
    const auto icon = QIcon::fromTheme(name);
    if (icon.isNull())
        return std::nullopt;
    const auto picture = icon.pixmap(QSize(side, side), 1.0).toImage();
    if (picture.isNull())
        return std::nullopt;
    return fromQt(squared(picture, side));
}

/// For a symbol without an icon: a rounded square, dashed for what is missing.
Image placeholder(std::string_view name, int side) {
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal stroke = side / 16.0;
    QPen pen(QColor(128, 128, 128), stroke);
    if (name.ends_with(".dashed"))
        pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    const qreal inset = side / 8.0;
    painter.drawRoundedRect(
        QRectF(0, 0, side, side).adjusted(inset, inset, -inset, -inset), side / 5.0, side / 5.0);
    painter.end();
    return fromQt(picture);
}

} // namespace

ThemeIcons::ThemeIcons(const Environment& environment) {
    if (!canDraw())
        return;
    QImageReader::setAllocationLimit(allocationLimitMegabytes);
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

std::optional<Image> ThemeIcons::icon(std::string_view nameOrPath, int sizePoints) {
    if (nameOrPath.empty() || !canDraw())
        return std::nullopt;
    const int side = sizePoints * pixelsPerPoint;
    auto name = QString::fromUtf8(nameOrPath.data(), static_cast<qsizetype>(nameOrPath.size()));
    if (name.startsWith(QLatin1Char('/')))
        return fromFile(name, side);
    // Older entries name a file of the pixmaps folder with its ending.
    for (const auto* ending : {".png", ".svg", ".xpm"}) {
        if (name.endsWith(QLatin1String(ending)))
            name.chop(4);
    }
    return fromTheme(name, side);
}

Image ThemeIcons::symbol(std::string_view name, int sizePoints) {
    if (!canDraw())
        return {};
    const int side = sizePoints * pixelsPerPoint;
    const auto known = std::ranges::find(symbolIcons, name, &SymbolIcon::symbol);
    if (known != symbolIcons.end()) {
        if (auto picture = fromTheme(QLatin1String(known->iconName), side))
            return *std::move(picture);
    }
    return placeholder(name, side);
}

} // namespace tessarine
