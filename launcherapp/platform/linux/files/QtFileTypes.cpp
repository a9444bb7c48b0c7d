#include "launcherapp/platform/linux/files/QtFileTypes.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

namespace tessarine {

std::vector<std::string> QtFileTypes::types(const std::string& path) const {
    const QFileInfo file(QFile::decodeName(path.c_str()));
    if (!file.exists())
        return {};
    const QMimeDatabase database;
    // Of a pipe or device the name alone is asked: reading it would wait.
    const auto type =
        database.mimeTypeForFile(file,
                                 file.isFile() || file.isDir() ? QMimeDatabase::MatchDefault
                                                               : QMimeDatabase::MatchExtension);
    std::vector<std::string> types{type.name().toStdString()};
    for (const auto& ancestor : type.allAncestors())
        types.push_back(ancestor.toStdString());
    return types;
}

} // namespace tessarine
