#include "net/networkmanager.h"

#include "base/version.h"
#include "net/replybody.h"

#include <QAuthenticator>
#include <QBuffer>
#include <QDateTime>
#include <QEventLoop>
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkInformation>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QTimer>
#include <QTimerEvent>

#include <utility>

namespace marlowen {

namespace {

constexpr int deadlinePeriodMilliseconds = 250;
constexpr int mostRedirects = 5;
constexpr int gaveUp = 1;

bool isThisMachine(const QString &host)
{
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           QHostAddress(host).isLoopback();
}

/// The system's proxies, but none to this machine.
class SystemProxies : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        if (isThisMachine(query.peerHostName()))
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        return systemProxyForQuery(query);
    }
};

QNetworkRequest requestTo(const QUrl &url)
{
    QNetworkRequest request(url);
    // The service identifies its clients by the sister program's name.
    request.setRawHeader("User-Agent", QByteArray("Brindlemark Drafteon ") + versionText);
    // Set explicitly, so that this class inflates the reply, with a limit.
    request.setRawHeader("Accept-Encoding", "gzip");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::SameOriginRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    return request;
}

/// The map as JSON text. Values without a JSON form travel as null, which is said.
QByteArray jsonOf(const QVariantMap &parameters)
{
    const QJsonObject object = QJsonObject::fromVariantMap(parameters);
    for (auto value = object.begin(); value != object.end(); ++value) {
        const QVariant source = parameters.value(value.key());
        if (value->isNull() && source.isValid() && !source.isNull())
            qDebug("JSON Serializer failed with %s has no JSON form", qPrintable(value.key()));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QString contentTypeOf(const QNetworkReply *reply)
{
    return reply->header(QNetworkRequest::ContentTypeHeader).toString();
}

QString dispositionOf(const QNetworkReply *reply)
{
    return QString::fromUtf8(reply->rawHeader("Content-Disposition"));
}

qint64 limitOf(const QNetworkReply *reply)
{
    const bool file = reply->hasRawHeader("Content-Disposition");
    return file && !isJsonType(contentTypeOf(reply)) ? fileLimitBytes : jsonLimitBytes;
}

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

bool isCallable(const QUrl &url)
{
    if (!url.isValid() || url.host().isEmpty())
        return false;
    const QString scheme = url.scheme();
    return scheme == QLatin1String("https") ||
           (scheme == QLatin1String("http") && isThisMachine(url.host()));
}

NetworkManager::NetworkManager(QObject *parent)
    : QObject(parent)
{
    m_access.setProxyFactory(new SystemProxies);
    connect(&m_access, &QNetworkAccessManager::finished, this, &NetworkManager::inetFinished);
    connect(&m_access, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &NetworkManager::inetProxyAuth);
    connect(&m_access, &QNetworkAccessManager::sslErrors, this, &NetworkManager::inetSSLErrors);
    using Information = QNetworkInformation;
    if (!Information::loadBackendByFeatures(Information::Feature::Reachability))
        return;
    connect(Information::instance(), &Information::reachabilityChanged, this,
            [this](Information::Reachability reachability) {
                inetAccessible(reachability != Information::Reachability::Disconnected);
                inetOnline(reachability == Information::Reachability::Online);
            });
}

NetworkManager::~NetworkManager()
{
    abortAll();
}

QVariantMap NetworkManager::_callInternet(CallType type, const QUrl &url,
                                          const QVariantMap &parameters, int timeoutSeconds,
                                          NetworkResponse *response)
{
    QNetworkReply *reply = isCallable(url) ? _send(type, url, parameters) : nullptr;
    if (!reply) {
        qDebug("NetworkManager: no reply");
        if (response)
            QTimer::singleShot(0, response, [response] { emit response->finished({}); });
        return {};
    }
    _watch(reply);
    const Pending pending{now() + qint64{timeoutSeconds} * 1000, response};
    if (!response)
        return _wait(reply, pending);
    connect(reply, &QNetworkReply::downloadProgress, this, &NetworkManager::inetProgress);
    connect(response, &QObject::destroyed, reply, &QNetworkReply::abort);
    _enter(reply, pending);
    return {};
}

QNetworkReply *NetworkManager::_send(CallType type, const QUrl &url, const QVariantMap &parameters)
{
    QNetworkRequest request = requestTo(url);
    if (type == Get)
        return m_access.get(request);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const QByteArray body = jsonOf(parameters);
    if (type == Put)
        return m_access.put(request, body);
    if (type == Post)
        return m_access.post(request, body);
    if (type != Delete)
        return nullptr;
    auto *buffer = new QBuffer;
    buffer->setData(body);
    buffer->open(QIODevice::ReadOnly);
    QNetworkReply *reply = m_access.sendCustomRequest(request, "DELETE", buffer);
    buffer->setParent(reply);
    return reply;
}

/// Ends a reply as soon as it is known to be too large.
void NetworkManager::_watch(QNetworkReply *reply)
{
    const auto check = [reply] {
        const qint64 promised = reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
        if (reply->isFinished() || qMax(promised, reply->bytesAvailable()) <= limitOf(reply))
            return;
        qDebug("NetworkManager: reply exceeds %lld bytes", limitOf(reply));
        reply->abort();
    };
    connect(reply, &QNetworkReply::metaDataChanged, reply, check);
    connect(reply, &QNetworkReply::readyRead, reply, check);
}

void NetworkManager::_enter(QNetworkReply *reply, const Pending &pending)
{
    m_pending.insert(reply, pending);
    if (!m_timer.isActive())
        m_timer.start(deadlinePeriodMilliseconds, this);
}

NetworkManager::Pending NetworkManager::_take(QNetworkReply *reply)
{
    const Pending pending = m_pending.take(reply);
    if (m_pending.isEmpty())
        m_timer.stop();
    return pending;
}

QVariantMap NetworkManager::_wait(QNetworkReply *reply, Pending pending)
{
    const QPointer<NetworkManager> self(this);
    QEventLoop loop;
    pending.loop = &loop;
    _enter(reply, pending);
    if (loop.exec() == gaveUp || !self)
        return {};
    // The end of the application also leaves the loop, before the reply has arrived.
    if (!m_pending.value(reply).finished) {
        _giveUp(reply, _take(reply));
        return {};
    }
    const QVariantMap decoded = decodeReply(reply);
    _take(reply);
    return decoded;
}

/// The common part of time-out and abort; the entry has been removed from the table.
void NetworkManager::_giveUp(QNetworkReply *reply, const Pending &pending)
{
    if (pending.loop)
        pending.loop->exit(gaveUp);
    reply->abort();
    reply->deleteLater();
    if (pending.response)
        emit pending.response->finished({});
}

void NetworkManager::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return;
    const QPointer<NetworkManager> self(this);
    const qint64 time = now();
    for (QNetworkReply *reply : m_pending.keys()) {
        // A response that gets the signal may remove entries, or delete this object.
        if (!self)
            return;
        const auto pending = m_pending.constFind(reply);
        if (pending == m_pending.cend() || pending->finished || pending->deadline >= time)
            continue;
        qDebug("TIMEOUT: removed %p", static_cast<void *>(reply));
        _giveUp(reply, _take(reply));
    }
}

void NetworkManager::abortAll()
{
    m_timer.stop();
    const auto pending = std::exchange(m_pending, {});
    for (auto entry = pending.begin(); entry != pending.end(); ++entry) {
        qDebug("ABORT: removed %p", static_cast<void *>(entry.key()));
        _giveUp(entry.key(), entry.value());
    }
}

void NetworkManager::inetFinished(QNetworkReply *reply)
{
    const auto pending = m_pending.find(reply);
    if (pending == m_pending.end())
        return;
    if (pending->loop) {
        pending->finished = true;
        pending->loop->exit(0);
        return;
    }
    const QVariantMap decoded = decodeReply(reply);
    const QPointer<NetworkResponse> response = _take(reply).response;
    if (response)
        emit response->finished(decoded);
}

QVariantMap NetworkManager::decodeReply(QNetworkReply *reply)
{
    reply->deleteLater();
    const int code = reply->error();
    if (code != QNetworkReply::NoError) {
        qDebug("NetworkManager::decodeReply: Error is %d", code);
        emit replyFailed(reply->url(), code, m_pending.value(reply).response);
        return {};
    }
    return _decodeBody(reply);
}

QVariantMap NetworkManager::_decodeBody(QNetworkReply *reply) const
{
    const qint64 limit = limitOf(reply);
    QByteArray body = reply->readAll();
    if (reply->rawHeader("Content-Encoding").toLower().contains("gzip")) {
        std::optional<QByteArray> plain = inflateGzip(body, limit);
        if (!plain) {
            qDebug("NetworkManager: gzip body is damaged or exceeds %lld bytes", limit);
            return {};
        }
        body = std::move(*plain);
    }
    const QString type = contentTypeOf(reply);
    if (isJsonType(type)) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(body, &error);
        if (error.error == QJsonParseError::NoError)
            return document.object().toVariantMap();
        qDebug("NetworkManager: Parse failed with:%s", qPrintable(error.errorString()));
        return {};
    }
    if (!reply->hasRawHeader("Content-Disposition"))
        return {};
    return {{QStringLiteral("mime"), type},
            {QStringLiteral("filename"), fileNameOf(dispositionOf(reply))},
            {QStringLiteral("data"), body}};
}

void NetworkManager::inetProgress(qint64 received, qint64 total)
{
    auto *reply = qobject_cast<QNetworkReply *>(sender());
    const auto pending = m_pending.constFind(reply);
    if (pending != m_pending.cend() && pending->response)
        emit pending->response->progressed(received, total);
}

void NetworkManager::inetProxyAuth(const QNetworkProxy &proxy, QAuthenticator *)
{
    qDebug("NetworkManager: proxy %s asks for a password", qPrintable(proxy.hostName()));
}

void NetworkManager::inetSSLErrors(QNetworkReply *, const QList<QSslError> &errors)
{
    QString text = QStringLiteral("SSLError: ");
    for (const QSslError &error : errors)
        text += error.errorString() + QLatin1Char('\n');
    qDebug("%s", qPrintable(text));
}

void NetworkManager::inetAccessible(bool accessible)
{
    if (accessible)
        qDebug() << "NetworkManager::Internet"
                 << "is"
                 << "accessible";
    else
        qDebug() << "NetworkManager::Internet"
                 << "is"
                 << "not"
                 << "accessible";
}

void NetworkManager::inetOnline(bool online)
{
    if (online)
        qDebug() << "NetworkManager::Internet"
                 << "is"
                 << "online";
    else
        qDebug() << "NetworkManager::Internet"
                 << "is"
                 << "not"
                 << "online";
}

} // namespace marlowen
