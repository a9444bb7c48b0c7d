#pragma once

#include "launcherapp/platform/Image.h"

#include <QColor>
#include <QImage>
#include <QSize>

namespace tessarine {

/// A picture of the services in the size in which it is drawn: scaled once to the dots of the
/// screen, and kept for the next paint. Main thread only.
class FittedPicture {
public:
    enum class Fit {
        whole,    ///< all of it, as large as the room allows
        unscaled, ///< all of it, never larger than it is
        filling,  ///< no room left free: what is too much is cut off at both ends
    };

    struct Room {
        QSize size; ///< logical pixels
        double scale = 1;
        Fit fit = Fit::whole;
        QColor tint; ///< of a picture that is a mask

        bool operator==(const Room&) const = default;
    };

    /// With its proportions. Null for an empty picture. Valid until the next call.
    const QImage& image(const Image& picture, const Room& room);

private:
    Image source_; ///< shares the pixels, so that their address names them
    Room room_;
    QImage fitted_;
};

} // namespace tessarine
