#include "launcherapp/platform/linux/network/QtHttpClient.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <map>
#include <vector>

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A server on the loopback address that says one thing for each path, byte for byte.
class Server {
public:
    Server() {
        server_.listen(QHostAddress(QHostAddress::LocalHost));
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
            auto* connection = server_.nextPendingConnection();
            QObject::connect(connection, &QTcpSocket::readyRead, connection, [this, connection] {
                answer(*connection);
            });
        });
    }

    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(server_.serverPort()) + path;
    }

    std::map<std::string, std::string> answers; ///< by path; none is kept waiting
    std::string asked;                          ///< every request so far

private:
    void answer(QTcpSocket& connection) {
        const auto request = connection.readAll().toStdString();
        asked += request;
        const auto path = request.substr(4, request.find(' ', 4) - 4);
        const auto found = answers.find(path);
        if (found == answers.end())
            return;
        connection.write(QByteArray::fromStdString(found->second));
        connection.disconnectFromHost();
    }

    QTcpServer server_;
};

class QtHttpClientTest : public testing::Test {
protected:
    void SetUp() override {
        // A proxy of the machine that runs the tests has no way to this server.
        for (const auto* const name : {"http_proxy", "https_proxy", "all_proxy"})
            qunsetenv(name);
    }

    /// The answer must come later, and once.
    HttpResult get(const HttpRequest& request) {
        int calls = 0;
        HttpResult result;
        const auto exchange = client.get(request, [&](HttpResult answer) {
            ++calls;
            result = std::move(answer);
        });
        EXPECT_EQ(calls, 0);
        EXPECT_TRUE(spinUntil([&] { return calls > 0; }));
        spinFor(20);
        EXPECT_EQ(calls, 1);
        return result;
    }

    /// The problem of a failure; empty for an answer.
    std::string problem(const HttpRequest& request) {
        const auto result = get(request);
        const auto* failure = std::get_if<HttpFailure>(&result);
        return failure ? failure->problem : "";
    }

    Server server;
    QtHttpClient client;
};

TEST_F(QtHttpClientTest, givesStatusAndBodyWhateverTheyAre) {
    server.answers["/rates?from=USD"] =
        "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nSet-Cookie: a=b\r\n\r\nbody";
    server.answers["/gone"] = "HTTP/1.1 404 Not Found\r\nContent-Length: 2\r\n\r\nno";
    server.answers["/broken"] = "HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n";
    EXPECT_EQ(get({.url = server.url("/rates?from=USD")}), HttpResult(HttpAnswer{200, "body"}));
    EXPECT_EQ(get({.url = server.url("/gone")}), HttpResult(HttpAnswer{404, "no"}));
    EXPECT_EQ(get({.url = server.url("/broken")}), HttpResult(HttpAnswer{503, ""}));
    EXPECT_THAT(server.asked, HasSubstr("User-Agent: Tessarine/"));
    EXPECT_THAT(server.asked, Not(HasSubstr("Cookie:")));
}

TEST_F(QtHttpClientTest, followsRedirectsButNotForever) {
    server.answers["/old"] = "HTTP/1.1 302 Found\r\nLocation: /new\r\nContent-Length: 0\r\n\r\n";
    server.answers["/new"] = "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nnew";
    server.answers["/round"] =
        "HTTP/1.1 302 Found\r\nLocation: /round\r\nContent-Length: 0\r\n\r\n";
    server.answers["/file"] =
        "HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\nContent-Length: 0\r\n\r\n";
    EXPECT_EQ(get({.url = server.url("/old")}), HttpResult(HttpAnswer{200, "new"}));
    EXPECT_NE(problem({.url = server.url("/round")}), "");
    EXPECT_NE(problem({.url = server.url("/file")}), "");
}

TEST_F(QtHttpClientTest, saysWhatWentWrong) {
    server.answers["/endless"] =
        "HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + std::string(5000, 'x');
    server.answers["/half"] = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf of it";
    server.answers["/nothing"] = "";
    EXPECT_EQ(problem({.url = server.url("/silent"), .timeout = Seconds{0.2}}),
              "127.0.0.1 did not answer within 0.2 seconds.");
    EXPECT_EQ(problem({.url = server.url("/endless"), .maximumBodyBytes = 4999}),
              "127.0.0.1 sent more than 4999 bytes.");
    EXPECT_EQ(get({.url = server.url("/endless"), .maximumBodyBytes = 5000}),
              HttpResult(HttpAnswer{200, std::string(5000, 'x')}));
    EXPECT_NE(problem({.url = server.url("/half")}), "");
    EXPECT_NE(problem({.url = server.url("/nothing")}), "");
    EXPECT_EQ(problem({.url = "http://127.0.0.1:1/"}), "Connection refused");
    for (const auto* const url : {"", "file:///etc/hostname", "http://", "data:,x", "rates"})
        EXPECT_THAT(problem({.url = url}), HasSubstr("is no address of the web")) << url;
}

TEST_F(QtHttpClientTest, anEndedExchangeIsNotHeard) {
    server.answers["/a"] = "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\na";
    int calls = 0;
    {
        const auto dropped = client.get({.url = server.url("/a")}, [&](HttpResult) { ++calls; });
    }
    EXPECT_EQ(get({.url = server.url("/a")}), HttpResult(HttpAnswer{200, "a"}));
    EXPECT_EQ(calls, 0);

    // One may end itself, and the client may go while others wait.
    auto shortLived = std::make_unique<QtHttpClient>();
    Subscription own;
    own = shortLived->get({.url = server.url("/a")}, [&](HttpResult) {
        ++calls;
        own.end();
    });
    EXPECT_TRUE(spinUntil([&] { return calls > 0; }));
    const auto waiting =
        shortLived->get({.url = server.url("/silent")}, [&](HttpResult) { ++calls; });
    spinFor(20);
    shortLived.reset();
    spinFor(20);
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace tessarine
