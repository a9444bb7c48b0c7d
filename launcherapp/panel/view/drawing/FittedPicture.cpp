#include "launcherapp/panel/view/drawing/FittedPicture.h"

#include "launcherapp/panel/view/drawing/Drawing.h"
#include "launcherapp/panel/view/rows/RowImages.h"

#include <algorithm>

namespace tessarine {

namespace {

QImage fitted(const Image& picture, const FittedPicture::Room& room) {
    using enum FittedPicture::Fit;
    auto image = RowImages::toQt(picture);
    image.setDevicePixelRatio(1);
    const QSizeF dots = QSizeF(room.size) * room.scale;
    // As large as it is: on a screen of another density it has as many points as on its own.
    const QSizeF own = QSizeF(image.size()) * (room.scale / picture.scale);
    QSizeF wanted = own.scaled(
        dots, room.fit == filling ? Qt::KeepAspectRatioByExpanding : Qt::KeepAspectRatio);
    if (room.fit == unscaled && wanted.width() > own.width())
        wanted = own;
    const QSize size = wanted.toSize().expandedTo(QSize(1, 1));
    if (size != image.size())
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (room.fit == filling) {
        const QSize kept = dots.toSize().boundedTo(size);
        image = image.copy(QRect(
            QPoint((size.width() - kept.width()) / 2, (size.height() - kept.height()) / 2), kept));
    }
    image.setDevicePixelRatio(room.scale);
    return picture.isMask ? Drawing::tinted(image, room.tint) : image;
}

} // namespace

const QImage& FittedPicture::image(const Image& picture, const Room& room) {
    if (picture.isEmpty() || room.size.isEmpty())
        return fitted_ = QImage();
    if (fitted_.isNull() || picture.pixels != source_.pixels || !(room == room_)) {
        source_ = picture;
        room_ = room;
        fitted_ = fitted(picture, room);
    }
    return fitted_;
}

} // namespace tessarine
