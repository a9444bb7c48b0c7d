#pragma once

#include "launcherapp/platform/Image.h"

#include <QColor>
#include <QImage>
#include <QObject>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessarine {

class AppCatalog;
class Icons;
struct ResultRow;

/// The pictures of rows and the symbols, each read once for a size and a density and kept. Asking
/// never reads: what is not there yet is read after the paint that asked, and `arrived` says so.
/// Main thread only.
class RowImages : public QObject {
    Q_OBJECT

public:
    struct Picture {
        QImage image; ///< null: there is none
        bool isMask = false;
    };

    /// Size and density of what is asked for.
    struct Square {
        int side = 0; ///< logical pixels
        double scale = 1;
    };

    RowImages(Icons& icons, const AppCatalog& catalog);
    ~RowImages() override;

    /// Something that was asked for is there now.
    std::function<void()> arrived;

    /// The icon of what the row stands for; null while it is not read yet. One without an image is
    /// a row whose symbol is to be drawn.
    const Picture* icon(const ResultRow& row, Square square);

    /// An icon by its name in the theme or its path; as `icon`.
    const Picture* named(const std::string& nameOrPath, Square square);

    /// A symbol in a colour; null while it is not read yet.
    const QImage* symbol(std::string_view name, Square square, const QColor& color);

    static QImage toQt(const Image& image);

    /// Asks for what a list of files begins with, so that the first of them need not wait for the
    /// icon theme and the table of file types to be loaded.
    void warm(Square square);

    /// Reads all that was asked for, now.
    void readAll();

private:
    enum class Kind { theme, fileType, symbol };

    struct Wanted {
        Kind kind = Kind::theme;
        std::string name;
        Square square;
    };

    const Picture* picture(Wanted wanted);
    Picture read(const Wanted& wanted) const;
    Picture ofFileType(const std::string& name, Square square) const;
    void readSome();
    void schedule();
    void forgetIfMany();

    Icons& icons_;
    const AppCatalog& catalog_;
    std::unordered_map<std::string, Picture> pictures_; ///< by kind, name and square
    std::unordered_map<std::string, QImage> tinted_;    ///< and by colour
    std::unordered_map<std::string, Wanted> wanted_;
    bool isScheduled_ = false;
};

} // namespace tessarine
