#include "launcherapp/platform/linux/processes/LocalDictionary.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/processes/QtProcessLauncher.h"
#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace tessarine {
namespace {

using testing::HasSubstr;

class LocalDictionaryTest : public testing::Test {
protected:
    /// The definition, from a server on this port; the answer must come later, and once.
    std::optional<std::string> define(std::uint16_t port, const std::string& word) {
        LocalDictionary dictionary(launcher, port);
        int calls = 0;
        std::optional<std::string> result;
        dictionary.define(word, [&](std::optional<std::string> text) {
            ++calls;
            result = std::move(text);
        });
        EXPECT_EQ(calls, 0);
        EXPECT_TRUE(spinUntil([&] { return calls > 0; }));
        spinFor(20);
        EXPECT_EQ(calls, 1);
        return result;
    }

    Environment environment{.home = "/"};
    QtProcessLauncher launcher{environment};
};

TEST_F(LocalDictionaryTest, asksAServerOfThisMachine) {
    QTcpServer server;
    QByteArray question;
    ASSERT_TRUE(server.listen(QHostAddress(QHostAddress::LocalHost)));
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&] {
        auto* connection = server.nextPendingConnection();
        connection->write("220 here\r\n");
        QObject::connect(connection, &QTcpSocket::readyRead, connection, [&question, connection] {
            question += connection->readAll();
            if (!question.contains("QUIT"))
                return;
            connection->write("150 1 definitions\r\n151 \"dog\" wn \"WordNet\"\r\ndog\r\n"
                              "   n 1: a   domestic\r\n..animal\r\n.\r\n250 ok\r\n221 bye\r\n");
            connection->disconnectFromHost();
        });
    });
    EXPECT_EQ(define(server.serverPort(), "dog"), "dog n 1: a domestic .animal");
    EXPECT_EQ(question.toStdString(), "DEFINE ! \"dog\"\r\nQUIT\r\n");
}

TEST_F(LocalDictionaryTest, withoutADictionaryThereIsNothing) {
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress(QHostAddress::LocalHost)));
    const auto port = closed.serverPort();
    closed.close();
    if (launcher.executable("wn"))
        GTEST_SKIP() << "NOT MEASURED: WordNet is installed here";
    EXPECT_EQ(define(port, "dog"), std::nullopt);
    for (const auto* word : {"", "-over", "a\"b", "a\r\nQUIT", "a\\"})
        EXPECT_EQ(define(port, word), std::nullopt) << "no word that could say something else";
}

TEST(DictionaryText, isTheFirstDefinitionOnOneLine) {
    EXPECT_EQ(dictDefinition("220 x\r\n552 no match\r\n"), std::nullopt);
    EXPECT_EQ(dictDefinition(""), std::nullopt);
    EXPECT_EQ(dictDefinition("151 a\r\nfirst\r\n.\r\n151 b\r\nsecond\r\n.\r\n"), "first");
    EXPECT_EQ(dictDefinition("151 a\r\ncut short"), "cut short");
    const auto longOne = dictDefinition("151 a\r\n" + std::string(299, 'x') + "ééé\r\n.\r\n");
    EXPECT_EQ(*longOne,
              std::string(299, 'x').append("…")); // cut before the letter that doesn't fit
    EXPECT_EQ(wordNetDefinition("\nOverview of noun dog\n\nThe noun dog has 7 senses\n"
                                "1. (42) dog, domestic dog -- (a member)\n2. frump"),
              "(42) dog, domestic dog -- (a member)");
    EXPECT_EQ(wordNetDefinition("No information"), std::nullopt);
}

} // namespace
} // namespace tessarine
