#include "launcherapp/platform/linux/network/QtHttpClient.h"

#include <fmt/format.h>

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QNetworkAccessManager>
#include <QNetworkCookieJar>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace tessarine {

namespace {

constexpr int mostRedirects = 5;
/// How long the end of the program waits for a proxy's script; then its thread is left behind.
constexpr std::chrono::seconds patienceAtEnd{2};

class SystemProxies : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
        return systemProxyForQuery(query);
    }
};

bool isWebAddress(const QUrl& url) {
    const auto scheme = url.scheme();
    return url.isValid() && !url.host().isEmpty() &&
           (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
}

QNetworkRequest networkRequest(const QUrl& url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("Tessarine/" TESSARINE_VERSION));
    return request;
}

/// Whether the server itself said what is wrong: Qt calls its refusals errors.
bool isServersWord(QNetworkReply::NetworkError error) {
    return error == QNetworkReply::NoError ||
           (error >= QNetworkReply::ContentAccessDenied &&
            error <= QNetworkReply::UnknownContentError) ||
           (error >= QNetworkReply::InternalServerError &&
            error <= QNetworkReply::UnknownServerError);
}

} // namespace

/// The side of the network's thread, touched there alone.
class QtHttpClient::Exchanges : public QObject {
public:
    using Done = std::function<void(HttpResult)>;

    /// `done` is called in this thread. `life` ends when nobody wants the answer any more.
    void begin(const HttpRequest& request, std::weak_ptr<const void> life, Done done) {
        const QUrl url(QString::fromStdString(request.url), QUrl::StrictMode);
        if (!isWebAddress(url)) {
            done(HttpFailure{fmt::format("“{}” is no address of the web.", request.url)});
            return;
        }
        if (!manager_) {
            manager_ = std::make_unique<QNetworkAccessManager>();
            manager_->setProxyFactory(new SystemProxies); // which the manager owns
        }
        auto* reply = manager_->get(networkRequest(url));
        new Exchange(reply, request, std::move(life), std::move(done)); // goes with the reply
    }

private:
    /// One answer as it comes in; a child of its reply.
    class Exchange : public QObject {
    public:
        Exchange(QNetworkReply* reply,
                 const HttpRequest& request,
                 std::weak_ptr<const void> life,
                 Done done)
            : QObject(reply), reply_(reply), request_(request), life_(std::move(life)),
              done_(std::move(done)) {
            // What isn't read yet is held back at its source, so that no server can fill memory.
            reply->setReadBufferSize(static_cast<qint64>(request.maximumBodyBytes) + 1);
            connect(reply, &QNetworkReply::readyRead, this, &Exchange::take);
            connect(reply, &QNetworkReply::finished, this, &Exchange::finish);
            QTimer::singleShot(
                std::chrono::ceil<std::chrono::milliseconds>(request.timeout), this, [this] {
                    end(HttpFailure{fmt::format("{} did not answer within {} seconds.",
                                                reply_->url().host().toStdString(),
                                                request_.timeout.count())});
                });
        }

    private:
        void take() {
            if (life_.expired()) {
                end(HttpFailure{});
                return;
            }
            body_ += reply_->readAll().toStdString();
            if (body_.size() > request_.maximumBodyBytes)
                end(HttpFailure{fmt::format("{} sent more than {} bytes.",
                                            reply_->url().host().toStdString(),
                                            request_.maximumBodyBytes)});
        }

        void finish() {
            take();
            const auto status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            if (status != 0 && isServersWord(reply_->error()))
                end(HttpAnswer{.status = status, .body = std::move(body_)});
            else
                end(HttpFailure{reply_->errorString().toStdString()});
        }

        /// The first end counts.
        void end(HttpResult result) {
            const auto done = std::exchange(done_, nullptr);
            if (!done)
                return;
            reply_->disconnect(this);
            reply_->abort();
            reply_->deleteLater();
            done(std::move(result));
        }

        QNetworkReply* reply_;
        HttpRequest request_;
        std::weak_ptr<const void> life_;
        Done done_;
        std::string body_;
    };

    std::unique_ptr<QNetworkAccessManager> manager_; ///< made in the thread that uses it
};

QtHttpClient::QtHttpClient() : receiver_(std::make_unique<QObject>()) {}

QtHttpClient::~QtHttpClient() {
    if (!thread_)
        return;
    thread_->quit();
    if (thread_->wait(QDeadlineTimer(patienceAtEnd)))
        return;
    // It may still deliver an answer one day, so what it uses stays.
    static_cast<void>(thread_.release());
    static_cast<void>(receiver_.release());
}

Subscription QtHttpClient::get(const HttpRequest& request, std::function<void(HttpResult)> done) {
    // Held by the subscription alone, so that both threads see its end, and the callback, with
    // whatever it captured, dies here.
    auto life = std::make_shared<std::function<void(HttpResult)>>(std::move(done));
    const std::weak_ptr<std::function<void(HttpResult)>> weak = life;
    std::weak_ptr<const void> isWanted = weak;
    auto deliver = [receiver = receiver_.get(), weak](HttpResult result) {
        QMetaObject::invokeMethod(
            receiver,
            [weak, result = std::move(result)]() mutable {
                // Kept for the call: it may end its own subscription.
                const auto wanted = weak.lock();
                if (const auto callback = wanted ? std::exchange(*wanted, nullptr) : nullptr)
                    callback(std::move(result));
            },
            Qt::QueuedConnection);
    };
    auto& there = exchanges();
    QMetaObject::invokeMethod(
        &there,
        [&there, request, isWanted = std::move(isWanted), deliver = std::move(deliver)]() mutable {
            there.begin(request, std::move(isWanted), std::move(deliver));
        },
        Qt::QueuedConnection);
    return Subscription([life = std::move(life)]() mutable { life.reset(); });
}

QtHttpClient::Exchanges& QtHttpClient::exchanges() {
    if (!thread_) {
        thread_ = std::make_unique<QThread>();
        thread_->setObjectName(QStringLiteral("network"));
        exchanges_ = new Exchanges;
        exchanges_->moveToThread(thread_.get());
        QObject::connect(thread_.get(), &QThread::finished, exchanges_, &QObject::deleteLater);
        thread_->start();
    }
    return *exchanges_;
}

} // namespace tessarine
