#include "launcherapp/platform/linux/desktop/PictureClipboard.h"

#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <utility>

namespace tessarine {

namespace {

struct Picture {
    QImage image;
    std::string problem; ///< why there is none
};

Picture loaded(const std::string& path) {
    QImageReader reader(QString::fromStdString(path));
    Picture picture{.image = reader.read(), .problem = {}};
    if (picture.image.isNull())
        picture.problem = fmt::format(
            "{} could not be read as a picture: {}", path, reader.errorString().toStdString());
    return picture;
}

} // namespace

void copyPicture(WorkQueues& work,
                 const std::string& path,
                 std::function<void(std::optional<std::string> problem)> done) {
    work.run(
        WorkPriority::userInitiated,
        [path] { return loaded(path); },
        [done = std::move(done)](const Picture& picture) {
            auto* const application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
            if (picture.image.isNull()) {
                done(picture.problem);
            } else if (!application) {
                done("there is no display, so there is no clipboard");
            } else {
                QGuiApplication::clipboard()->setImage(picture.image);
                done(std::nullopt);
            }
        });
}

} // namespace tessarine
