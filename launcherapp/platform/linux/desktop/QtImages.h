#pragma once

#include "launcherapp/platform/Image.h"

class QImage;

namespace tessarine {

/// The pixels of a picture of Qt's; empty for a null picture. Any thread.
Image imageOf(const QImage& picture, double scale);

} // namespace tessarine
