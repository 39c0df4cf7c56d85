#include "base/version.h"
#include "net/networkmanager.h"
#include "net/replybody.h"
#include "net/testserver.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

using namespace marlowen;

namespace {

const QVariantMap answer{{QStringLiteral("status"), QStringLiteral("OK")}};
const QByteArray answerJson = R"({"status":"OK"})";
constexpr int seconds = 20;

QVariantMap get(NetworkManager &network, const QUrl &url, int timeout = seconds)
{
    return network._callInternet(NetworkManager::Get, url, {}, timeout, nullptr);
}

QByteArray redirectTo(const QUrl &url)
{
    return httpReply("Location: " + url.toEncoded(), {}, "302 Found");
}

} // namespace

class TestNetworkManager : public QObject
{
    Q_OBJECT

private slots:
    void requestsAreAsTheServiceExpects()
    {
        TestServer server;
        NetworkManager network;
        server.answer("/x", jsonReply(answerJson));
        const QVariantMap parameters{{QStringLiteral("a"), 1}};
        const QList<QByteArray> verbs{"GET", "PUT", "POST", "DELETE"};
        for (int type = NetworkManager::Get; type <= NetworkManager::Delete; ++type) {
            QCOMPARE(network._callInternet(NetworkManager::CallType(type),
                                           server.url(QStringLiteral("/x")), parameters, seconds,
                                           nullptr),
                     answer);
            const QByteArray request = server.requests.takeFirst();
            QVERIFY(request.startsWith(verbs[type] + " /x HTTP/1.1\r\n"));
            QVERIFY(
                request.contains(QByteArray("User-Agent: Brindlemark Drafteon ") + versionText));
            QVERIFY(request.contains("Accept-Encoding: gzip\r\n"));
            const bool body = request.contains("Content-Type: application/json\r\n") &&
                              request.endsWith("\r\n\r\n{\"a\":1}");
            QCOMPARE(body, type != NetworkManager::Get);
        }
        QVERIFY(!network.hasPending());
    }

    void repliesAreDecoded_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QVariantMap>("expected");
        const QByteArray gzipHead = "Content-Encoding: gzip\r\nContent-Type: application/json";
        const QByteArray packed = gzipped(answerJson);
        const auto file = [](const char *name, const QByteArray &data) {
            return QVariantMap{{"mime", "application/octet-stream"},
                               {"filename", QString::fromLatin1(name)},
                               {"data", data}};
        };
        QTest::newRow("json with parameters")
            << httpReply("Content-Type: Application/JSON; charset=utf-8", answerJson) << answer;
        QTest::newRow("gzip") << httpReply(gzipHead, packed) << answer;
        QTest::newRow("gzip in two members")
            << httpReply(gzipHead, gzipped(answerJson.left(5)) + gzipped(answerJson.mid(5)))
            << answer;
        QTest::newRow("gzip cut") << httpReply(gzipHead, packed.chopped(9)) << QVariantMap();
        QTest::newRow("no gzip") << httpReply(gzipHead, answerJson) << QVariantMap();
        QTest::newRow("gzip bomb")
            << httpReply(gzipHead, gzipped(QByteArray(jsonLimitBytes + 1, ' '))) << QVariantMap();
        QTest::newRow("file") << fileReply("../../.bashrc", "MZ") << file("bashrc", "MZ");
        QTest::newRow("empty file") << fileReply("a", {}) << file("a", QByteArray(""));
        QTest::newRow("broken json") << jsonReply("{\"a\":") << QVariantMap();
        QTest::newRow("json list") << jsonReply("[1,2]") << QVariantMap();
        QTest::newRow("deep json") << jsonReply(QByteArray(100000, '[')) << QVariantMap();
        QTest::newRow("web page") << httpReply("Content-Type: text/html", "<p>") << QVariantMap();
        QTest::newRow("not found")
            << httpReply("Content-Type: application/json", answerJson, "404 Not Found")
            << QVariantMap();
        QTest::newRow("cut") << jsonReply(answerJson).chopped(1) << QVariantMap();
        QTest::newRow("json of 65 MB promised")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
                          "Content-Length: 68157440\r\n\r\n{}")
            << QVariantMap();
        QTest::newRow("file of 2 GB promised")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Disposition: attachment\r\n"
                          "Content-Length: 2147483648\r\n\r\n{}")
            << QVariantMap();
        QTest::newRow("no HTTP") << QByteArray("220 mail ready\r\n") << QVariantMap();
        QTest::newRow("nothing") << QByteArray() << QVariantMap();
        QTest::newRow("local file") << redirectTo(QUrl("file:///etc/passwd")) << QVariantMap();
        QTest::newRow("other host") << redirectTo(QUrl("http://localhost/x")) << QVariantMap();
        QTest::newRow("circle") << redirectTo(QUrl("/x")) << QVariantMap();
    }

    void repliesAreDecoded()
    {
        QFETCH(QByteArray, reply);
        TestServer server;
        NetworkManager network;
        server.answer("/x", reply);
        QTEST(get(network, server.url(QStringLiteral("/x"))), "expected");
        QVERIFY(!network.hasPending());
    }

    void redirectsOnOneServerAreFollowed()
    {
        TestServer server;
        NetworkManager network;
        server.answer("/x", redirectTo(server.url(QStringLiteral("/y"))));
        server.answer("/y", jsonReply(answerJson));
        QCOMPARE(get(network, server.url(QStringLiteral("/x"))), answer);
    }

    void endlessRepliesAreCutOff()
    {
        TestServer server;
        NetworkManager network;
        qint64 sent = 0;
        server.act("/x", [&sent](QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n");
            connect(&socket, &QTcpSocket::bytesWritten, &socket, [&sent, &socket](qint64 bytes) {
                sent += bytes;
                if (socket.bytesToWrite() == 0)
                    socket.write(QByteArray(1 << 20, ' '));
            });
        });
        QCOMPARE(get(network, server.url(QStringLiteral("/x")), 120), QVariantMap());
        QVERIFY(sent > jsonLimitBytes / 2 && sent < 2 * jsonLimitBytes);
    }

    void silenceEndsAtTheDeadline()
    {
        TestServer server;
        NetworkManager network;
        QElapsedTimer elapsed;
        elapsed.start();
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^TIMEOUT: removed "));
        QCOMPARE(get(network, server.url(QStringLiteral("/silent")), 1), QVariantMap());
        QVERIFY(elapsed.elapsed() >= 1000);
        QVERIFY(!network.hasPending());
        QTRY_COMPARE(server.disconnections, 1);
    }

    void abortedCallsReturnEmpty()
    {
        TestServer server;
        auto network = std::make_unique<NetworkManager>();
        const QUrl silent = server.url(QStringLiteral("/silent"));
        NetworkResponse response;
        QSignalSpy finished(&response, &NetworkResponse::finished);
        network->_callInternet(NetworkManager::Get, silent, {}, seconds, &response);
        QTimer::singleShot(50, network.get(), &NetworkManager::abortAll);
        QCOMPARE(get(*network, silent), QVariantMap());
        QCOMPARE(finished.count(), 1);
        QVERIFY(!network->hasPending());

        QTimer::singleShot(50, qApp, [&] { network.reset(); });
        QCOMPARE(get(*network, silent), QVariantMap());
        QVERIFY(!network);
    }

    void asynchronousRepliesArriveOnce()
    {
        TestServer server;
        NetworkManager network;
        const QByteArray body(300000, 'x');
        server.answer("/f", fileReply("f", body));
        NetworkResponse whole;
        auto dropped = std::make_unique<NetworkResponse>();
        NetworkResponse refused;
        QSignalSpy progressed(&whole, &NetworkResponse::progressed);
        QSignalSpy finished(&whole, &NetworkResponse::finished);
        QSignalSpy refusal(&refused, &NetworkResponse::finished);
        const QUrl file = server.url(QStringLiteral("/f"));
        QVERIFY(network._callInternet(NetworkManager::Get, file, {}, seconds, &whole).isEmpty());
        network._callInternet(NetworkManager::Get, server.url(QStringLiteral("/silent")), {},
                              seconds, dropped.get());
        network._callInternet(NetworkManager::Get, QUrl("http://example.com"), {}, seconds,
                              &refused);
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(finished[0][0].toMap().value(QStringLiteral("data")).toByteArray(), body);
        QCOMPARE(progressed.last()[1].toLongLong(), body.size());
        QTRY_COMPARE(refusal.count(), 1);
        QTRY_COMPARE(server.requests.size(), 2);
        QVERIFY(network.hasPending());
        dropped.reset();
        QTRY_VERIFY(!network.hasPending());
        QCOMPARE(finished.count(), 1);
    }

    /// At first the server's certificate is not trusted, then this process trusts it.
    void certificatesCount()
    {
        TestServer server(true);
        NetworkManager network;
        server.answer("/x", jsonReply(answerJson));
        server.answer("/plain", redirectTo(QUrl("http://127.0.0.1:1/x")));
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^SSLError: .*certificate.*\n$"));
        QCOMPARE(get(network, server.url(QStringLiteral("/x"))), QVariantMap());
        QVERIFY(server.requests.isEmpty());

        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.addCaCertificate(QSslCertificate(testCertificate));
        QSslConfiguration::setDefaultConfiguration(trusting);
        NetworkManager trustful;
        QCOMPARE(get(trustful, server.url(QStringLiteral("/x"))), answer);
        QCOMPARE(get(trustful, server.url(QStringLiteral("/plain"))), QVariantMap());
        QSslConfiguration::setDefaultConfiguration(before);
    }

    void onlySafeAddressesAreCalled()
    {
        for (const char *good :
             {"https://example.com/a", "http://127.0.0.1:80", "http://[::1]/", "http://localhost/"})
            QVERIFY2(isCallable(QUrl(QLatin1String(good))), good);
        for (const char *bad : {"", "http://example.com", "http://localhost.example.com", "https:",
                                "file:///etc/passwd", "ftp://127.0.0.1", "data:text/plain,x"})
            QVERIFY2(!isCallable(QUrl(QLatin1String(bad))), bad);
    }

    void fileNamesLoseTheirPaths()
    {
        const std::pair<const char *, const char *> rows[] = {
            {"attachment; filename=\"a b.exe\"; size=3", "a b.exe"},
            {"attachment; filename=plain.txt", "plain.txt"},
            {"attachment; filename=\"x.exe\"; filename*=UTF-8''%E2%82%AC%20%2Fetc%2Fr.exe",
             "r.exe"},
            {"attachment; filename=\"C:\\\\Windows\\\\a.dll\"", "a.dll"},
            {"attachment; filename=\"C:a.dll\"", "a.dll"},
            {"attachment; filename=\"/\"", ""},
            {"attachment; filename=\"..\"", ""},
            {"attachment; filename=\"a\001b\"", "ab"},
            {"attachment; xfilename=a", ""},
            {"attachment", ""},
        };
        for (const auto &[header, name] : rows)
            QCOMPARE(fileNameOf(QString::fromUtf8(header)), QString::fromUtf8(name));
    }

    /// Last: no loop runs for long afterwards.
    void waitingEndsWithTheApplication()
    {
        TestServer server;
        NetworkManager network;
        QTimer::singleShot(50, qApp, [] { QCoreApplication::exit(0); });
        QCOMPARE(get(network, server.url(QStringLiteral("/silent"))), QVariantMap());
        QVERIFY(!network.hasPending());
    }
};

QTEST_GUILESS_MAIN(TestNetworkManager)
#include "tst_networkmanager.moc"
