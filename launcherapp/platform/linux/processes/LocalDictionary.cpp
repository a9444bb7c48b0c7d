#include "launcherapp/platform/linux/processes/LocalDictionary.h"

#include "launcherapp/platform/ProcessLauncher.h"

#include <QHostAddress>
#include <QProcess>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Done = std::function<void(std::optional<std::string>)>;

constexpr int patienceMilliseconds = 3000;
constexpr qsizetype longestAnswer = qsizetype{1} << 18;
constexpr std::size_t longestText = 300; ///< bytes; a row shows a line

std::string_view nextLine(std::string_view& text) {
    const auto end = std::min(text.find('\n'), text.size());
    auto line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// One line with single blanks, cut between characters.
std::string tidied(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool blank = std::isspace(static_cast<unsigned char>(c)) != 0;
        if (!blank)
            result += c;
        else if (!result.empty() && result.back() != ' ')
            result += ' ';
    }
    if (result.size() > longestText) {
        std::size_t end = longestText;
        while (end > 0 && (static_cast<unsigned char>(result[end]) & 0xc0) == 0x80)
            --end;
        result.resize(end);
        result += "…";
    }
    while (result.ends_with(' '))
        result.pop_back();
    return result;
}

/// Whether a word can stand in a question as it is.
bool canBeAsked(const std::string& word) {
    return !word.empty() && word.front() != '-' && std::ranges::none_of(word, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == 0x7f;
    });
}

/// Calls `done` the first time only, whichever of answer, failure and time-out comes first.
class Once {
public:
    explicit Once(Done done) : done_(std::make_shared<Done>(std::move(done))) {}

    void operator()(std::optional<std::string> text) const {
        if (const auto done = std::exchange(*done_, nullptr))
            done(std::move(text));
    }

private:
    std::shared_ptr<Done> done_;
};

} // namespace

std::optional<std::string> dictDefinition(std::string_view answer) {
    bool inDefinition = false;
    std::string text;
    while (!answer.empty()) {
        auto line = nextLine(answer);
        if (!inDefinition) {
            inDefinition = line.starts_with("151 ");
            continue;
        }
        if (line == ".")
            break;
        if (line.starts_with("..")) // a full stop that begins a line of text is doubled
            line.remove_prefix(1);
        text += line;
        text += '\n';
    }
    text = tidied(text);
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<std::string> wordNetDefinition(std::string_view overview) {
    while (!overview.empty()) {
        const auto line = nextLine(overview);
        if (line.starts_with("1. "))
            return tidied(line.substr(3));
    }
    return std::nullopt;
}

LocalDictionary::LocalDictionary(const ProcessLauncher& programs, std::uint16_t port)
    : programs_(programs), port_(port), owner_(std::make_unique<QObject>()) {}

LocalDictionary::~LocalDictionary() = default;

void LocalDictionary::define(const std::string& word, Done done) {
    if (!canBeAsked(word)) {
        QTimer::singleShot(0, owner_.get(), [done = std::move(done)] { done(std::nullopt); });
        return;
    }
    auto* socket = new QTcpSocket(owner_.get());
    const Once answered([socket, done = std::move(done)](std::optional<std::string> text) {
        socket->deleteLater();
        done(std::move(text));
    });
    const auto question = QByteArrayLiteral("DEFINE ! \"") + QByteArray::fromStdString(word) +
                          QByteArrayLiteral("\"\r\nQUIT\r\n");
    QObject::connect(
        socket, &QTcpSocket::connected, socket, [socket, question] { socket->write(question); });
    QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, answered] {
        if (socket->bytesAvailable() > longestAnswer)
            answered(std::nullopt);
    });
    QObject::connect(socket, &QTcpSocket::disconnected, socket, [socket, answered] {
        answered(dictDefinition(socket->readAll().toStdString()));
    });
    QObject::connect(
        socket, &QTcpSocket::errorOccurred, socket, [this, socket, word, answered](auto error) {
            // A server that has said all closes the connection; that is no failure.
            if (error == QAbstractSocket::RemoteHostClosedError)
                return;
            socket->disconnect();
            askWordNet(word, answered);
        });
    QTimer::singleShot(patienceMilliseconds, socket, [answered] { answered(std::nullopt); });
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), port_);
}

void LocalDictionary::askWordNet(const std::string& word, Done done) {
    const auto program = programs_.executable("wn");
    if (!program) {
        done(std::nullopt);
        return;
    }
    auto* process = new QProcess(owner_.get());
    const Once answered([process, done = std::move(done)](std::optional<std::string> text) {
        process->disconnect();
        QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
        if (process->state() == QProcess::NotRunning)
            process->deleteLater();
        else
            process->kill();
        done(std::move(text));
    });
    QObject::connect(process, &QProcess::finished, process, [process, answered] {
        answered(wordNetDefinition(process->readAllStandardOutput().toStdString()));
    });
    QObject::connect(
        process, &QProcess::errorOccurred, process, [answered] { answered(std::nullopt); });
    QTimer::singleShot(patienceMilliseconds, process, [answered] { answered(std::nullopt); });
    process->start(QString::fromStdString(*program),
                   {QString::fromStdString(word), QStringLiteral("-over")},
                   QIODevice::ReadOnly);
}

} // namespace tessarine
