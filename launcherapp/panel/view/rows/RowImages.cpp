#include "launcherapp/panel/view/rows/RowImages.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/platform/Icons.h"
#include "launcherapp/query/ResultRow.h"

#include <fmt/format.h>

#include <QElapsedTimer>
#include <QMimeDatabase>
#include <QTimer>
#include <optional>
#include <utility>

namespace tessarine {

namespace {

/// Of a frame of 16 ms, so that keys typed while icons arrive are answered between them.
constexpr int millisecondsAtATime = 5;
/// At 42 pixels a side about 7 KB each: 4 MB at most.
constexpr std::size_t mostPictures = 600;
constexpr std::string_view folderType = "inode/directory";

std::string extension(std::string_view path) {
    const auto name = Paths::lastPart(path);
    const auto point = name.rfind('.');
    return point == std::string_view::npos || point == 0 ? std::string()
                                                         : std::string(name.substr(point));
}

} // namespace

RowImages::RowImages(Icons& icons, const AppCatalog& catalog) : icons_(icons), catalog_(catalog) {}

RowImages::~RowImages() = default;

const RowImages::Picture* RowImages::icon(const ResultRow& row, Square square) {
    static const Picture none;
    if (row.kind == RowKind::app) {
        const auto* installed = catalog_.registry()->byPath(row.id);
        if (!installed || installed->icon.empty())
            return &none;
        return picture({Kind::theme, installed->icon, square});
    }
    if (row.kind == RowKind::file && row.url) {
        const bool isFolder = row.symbol == "folder";
        return picture(
            {Kind::fileType, isFolder ? std::string(folderType) : extension(row.id), square});
    }
    return &none;
}

const RowImages::Picture* RowImages::named(const std::string& nameOrPath, Square square) {
    static const Picture none;
    return nameOrPath.empty() ? &none : picture({Kind::theme, nameOrPath, square});
}

const QImage* RowImages::symbol(std::string_view name, Square square, const QColor& color) {
    if (name.empty())
        return nullptr;
    auto key = fmt::format("{}|{}|{}|{:x}", name, square.side, square.scale, color.rgba());
    if (const auto known = tinted_.find(key); known != tinted_.end())
        return &known->second;
    const auto* mask = picture({Kind::symbol, std::string(name), square});
    if (!mask)
        return nullptr;
    return &tinted_.emplace(std::move(key), Drawing::tinted(mask->image, color)).first->second;
}

QImage RowImages::toQt(const Image& image) {
    if (image.isEmpty())
        return {};
    auto picture = QImage(reinterpret_cast<const uchar*>(image.pixels->data()),
                          image.widthPixels,
                          image.heightPixels,
                          QImage::Format_ARGB32_Premultiplied)
                       .copy();
    picture.setDevicePixelRatio(image.scale);
    return picture;
}

const RowImages::Picture* RowImages::picture(Wanted wanted) {
    auto key = fmt::format("{}|{}|{}|{}",
                           static_cast<int>(wanted.kind),
                           wanted.name,
                           wanted.square.side,
                           wanted.square.scale);
    if (const auto known = pictures_.find(key); known != pictures_.end())
        return &known->second;
    wanted_.emplace(std::move(key), std::move(wanted));
    schedule();
    return nullptr;
}

void RowImages::warm(Square square) {
    for (const auto& name : {std::string(folderType), std::string(".txt")})
        picture({Kind::fileType, name, square});
}

void RowImages::schedule() {
    if (std::exchange(isScheduled_, true))
        return;
    QTimer::singleShot(0, this, &RowImages::readSome);
}

void RowImages::readSome() {
    isScheduled_ = false;
    QElapsedTimer clock;
    clock.start();
    forgetIfMany();
    while (!wanted_.empty() && clock.elapsed() < millisecondsAtATime) {
        const auto next = wanted_.extract(wanted_.begin());
        pictures_.emplace(next.key(), read(next.mapped()));
    }
    if (!wanted_.empty())
        schedule();
    if (arrived)
        arrived();
}

void RowImages::readAll() {
    while (!wanted_.empty())
        readSome();
}

void RowImages::forgetIfMany() {
    if (pictures_.size() < mostPictures)
        return;
    pictures_.clear();
    tinted_.clear();
}

RowImages::Picture RowImages::read(const Wanted& wanted) const {
    const auto [side, scale] = wanted.square;
    switch (wanted.kind) {
    case Kind::theme: {
        const auto image = icons_.icon(wanted.name, side, scale);
        return image ? Picture{toQt(*image), image->isMask} : Picture{};
    }
    case Kind::fileType:
        return ofFileType(wanted.name, wanted.square);
    case Kind::symbol:
        return {toQt(icons_.symbol(wanted.name, side, scale)), true};
    }
    return {};
}

RowImages::Picture RowImages::ofFileType(const std::string& name, Square square) const {
    // By the name alone: looking into the file could wait for a disk that sleeps.
    const QMimeDatabase types;
    const auto type = name == folderType
                          ? types.mimeTypeForName(Drawing::toQt(name))
                          : types.mimeTypeForFile(QStringLiteral("x") + Drawing::toQt(name),
                                                  QMimeDatabase::MatchExtension);
    for (const auto& icon : {type.iconName(), type.genericIconName()}) {
        if (const auto image = icons_.icon(icon.toStdString(), square.side, square.scale))
            return {toQt(*image), image->isMask};
    }
    return {};
}

} // namespace tessarine
