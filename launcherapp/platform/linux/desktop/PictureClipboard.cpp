#include "launcherapp/platform/linux/desktop/PictureClipboard.h"

#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <QBuffer>
#include <QByteArray>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QMimeData>
#include <memory>
#include <utility>
#include <variant>

namespace tessarine {

namespace {

/// A picture as PNG, or why there is none.
using Loaded = std::variant<QByteArray, std::string>;

/// It is decoded in any case, so that a broken picture doesn't take the place of a good one.
Loaded loaded(const std::string& path) {
    QFile file(QString::fromStdString(path));
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const auto image = reader.read();
    if (image.isNull()) {
        const auto why = bytes.isEmpty() ? file.errorString() : reader.errorString();
        return fmt::format("{} could not be read as a picture: {}", path, why.toStdString());
    }
    if (reader.format() == "png")
        return bytes;
    QByteArray png;
    QBuffer target(&png);
    image.save(&target, "PNG");
    return png;
}

} // namespace

void copyPicture(WorkQueues& work,
                 const std::string& path,
                 std::function<void(std::optional<std::string> problem)> done) {
    work.run(
        WorkPriority::userInitiated,
        [path] { return loaded(path); },
        [done = std::move(done)](const Loaded& picture) {
            auto* const application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
            if (const auto* problem = std::get_if<std::string>(&picture))
                return done(*problem);
            if (!application)
                return done("there is no display, so there is no clipboard");
            // An image would be encoded anew, on the main thread, for each program that asks.
            auto content = std::make_unique<QMimeData>();
            content->setData(QStringLiteral("image/png"), std::get<QByteArray>(picture));
            QGuiApplication::clipboard()->setMimeData(content.release());
            done(std::nullopt);
        });
}

} // namespace tessarine
