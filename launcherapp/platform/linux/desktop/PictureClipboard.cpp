#include "launcherapp/platform/linux/desktop/PictureClipboard.h"

#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QImageReader>
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

using Done = std::function<void(std::optional<std::string> problem)>;

void put(Pasteboard& board, const QByteArray& png, const Done& done) {
    if (const auto ability = board.ability(); !ability.available)
        return done("the picture can't be copied: " + ability.reason);
    const auto count =
        board.write({.items = {{.type = "image/png",
                                .bytes = std::make_shared<std::string>(png.toStdString())}}});
    // A display that refuses it says nothing unless it is asked.
    board.offer([done, count](const std::optional<PasteboardOffer>& offer) {
        done(offer && offer->count == count
                 ? std::nullopt
                 : std::optional<std::string>("the clipboard did not take the picture"));
    });
}

} // namespace

void copyPicture(WorkQueues& work, Pasteboard& board, const std::string& path, Done done) {
    work.run(
        WorkPriority::userInitiated,
        [path] { return loaded(path); },
        [&board, done = std::move(done)](const Loaded& picture) {
            if (const auto* problem = std::get_if<std::string>(&picture))
                return done(*problem);
            put(board, std::get<QByteArray>(picture), done);
        });
}

} // namespace tessarine
