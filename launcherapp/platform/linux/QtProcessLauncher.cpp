#include "launcherapp/platform/linux/QtProcessLauncher.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/SystemdScope.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace tessarine {

namespace {

bool isExecutableFile(const QString& path) {
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

/// The folder asked for, or the nearest thing to it that is there.
QString workingDirectory(const std::string& wanted, const std::string& home) {
    for (const auto& candidate : {wanted, home}) {
        auto path = QString::fromStdString(candidate);
        if (!candidate.empty() && QDir(path).exists())
            return path;
    }
    return QDir::rootPath();
}

} // namespace

QtProcessLauncher::QtProcessLauncher(const Environment& environment) : home_(environment.home) {}

std::int64_t QtProcessLauncher::startDetached(const ProcessSpec& spec) {
    if (spec.arguments.empty())
        throw ProcessError("there is no program to start");
    const auto program = executable(spec.arguments.front());
    if (!program)
        throw ProcessError(spec.arguments.front() + " could not be started: no such program");

    QProcess process;
    process.setProgram(QString::fromStdString(*program));
    QStringList arguments;
    for (std::size_t i = 1; i < spec.arguments.size(); ++i)
        arguments.append(QString::fromStdString(spec.arguments[i]));
    process.setArguments(arguments);
    auto variables = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : spec.environment)
        variables.insert(QString::fromStdString(name), QString::fromStdString(value));
    process.setProcessEnvironment(variables);
    process.setWorkingDirectory(workingDirectory(spec.workingDirectory, home_));
    // A terminal or log that ends with us would take what it started along.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    qint64 processID = 0;
    if (!process.startDetached(&processID))
        throw ProcessError(*program +
                           " could not be started: " + process.errorString().toStdString());
    SystemdScope::request(processID, spec.name);
    return processID;
}

std::optional<std::string> QtProcessLauncher::executable(std::string_view program) const {
    const auto name = QString::fromUtf8(program.data(), static_cast<qsizetype>(program.size()));
    if (name.contains(QLatin1Char('/')))
        return isExecutableFile(name) ? std::optional(name.toStdString()) : std::nullopt;
    const auto path = QStandardPaths::findExecutable(name);
    return path.isEmpty() ? std::nullopt : std::optional(path.toStdString());
}

} // namespace tessarine
