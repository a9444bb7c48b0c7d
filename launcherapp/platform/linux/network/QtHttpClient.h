#pragma once

#include "launcherapp/platform/HttpClient.h"

#include <memory>

class QObject;
class QThread;

namespace tessarine {

/// The web over Qt, by way of the system's proxy. The exchanges live in a thread of their own,
/// which the first one starts: asking for the proxy may run a script from the network, and the
/// first encrypted connection reads the certificates. Main thread only, with Qt's event loop.
class QtHttpClient : public HttpClient {
public:
    QtHttpClient();
    /// Exchanges under way end unheard.
    ~QtHttpClient() override;
    QtHttpClient(const QtHttpClient&) = delete;
    QtHttpClient& operator=(const QtHttpClient&) = delete;

    Subscription get(const HttpRequest& request,
                     std::function<void(HttpResult result)> done) override;

private:
    class Exchanges;

    Exchanges& exchanges();

    std::unique_ptr<QObject> receiver_; ///< in the main thread; answers on their way go with it
    std::unique_ptr<QThread> thread_;   ///< null before the first exchange
    Exchanges* exchanges_ = nullptr;    ///< lives in the thread and goes with it
};

} // namespace tessarine
