#pragma once

#include <QBasicTimer>
#include <QHash>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QSslError>
#include <QUrl>
#include <QVariantMap>

class QAuthenticator;
class QEventLoop;
class QNetworkProxy;
class QNetworkReply;

namespace marlowen {

/// Where the reply of an asynchronous call arrives. Destroying it aborts the call.
class NetworkResponse : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

signals:
    /// Bytes; the total is -1 while it is not known.
    void progressed(qint64 received, qint64 total);
    /// Exactly once: the decoded reply, empty after any failure.
    void finished(const QVariantMap &reply);
};

/// Whether a URL may be called: HTTPS, or HTTP to this machine.
bool isCallable(const QUrl &url);

/// The program's only HTTP client: one call, one request, one reply decoded into a map. Every call
/// has a deadline. Certificate errors end a call; so do redirects to another host or away from
/// HTTPS, and replies beyond jsonLimitBytes or fileLimitBytes. All failures give an empty map and a
/// debug message.
///
/// Decoded replies: the top-level object of "application/json"; for a reply with a
/// "Content-Disposition" header the entries "mime", "filename" and "data".
///
/// Belongs to the GUI thread. Blocking calls run an event loop, so other events arrive meanwhile.
class NetworkManager : public QObject
{
    Q_OBJECT

public:
    enum CallType { Get, Put, Post, Delete };

    explicit NetworkManager(QObject *parent = nullptr);
    /// Aborts all pending requests.
    ~NetworkManager() override;

    /// Sends parameters as a JSON body, except with Get. Without a response object the call waits
    /// and returns the decoded reply; with one it returns an empty map at once. A caller that may
    /// be destroyed while it waits must check that it still exists.
    QVariantMap _callInternet(CallType type, const QUrl &url, const QVariantMap &parameters,
                              int timeoutSeconds, NetworkResponse *response);
    /// Decodes a finished reply and schedules it for deletion.
    QVariantMap decodeReply(QNetworkReply *reply);
    void abortAll();
    /// Whether the deadline timer runs; it does only while something is pending.
    bool hasPending() const { return m_timer.isActive(); }

signals:
    /// A reply came with an error. The response object is null for blocking calls.
    void replyFailed(const QUrl &url, int code, marlowen::NetworkResponse *response);

public slots:
    void inetFinished(QNetworkReply *reply);
    /// Has no credentials beyond those of the system's proxy settings; the call then fails.
    void inetProxyAuth(const QNetworkProxy &proxy, QAuthenticator *authenticator);
    /// Logs the errors and does not ignore them.
    void inetSSLErrors(QNetworkReply *reply, const QList<QSslError> &errors);
    void inetProgress(qint64 received, qint64 total);
    void inetAccessible(bool accessible);
    void inetOnline(bool online);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    struct Pending
    {
        qint64 deadline = 0; ///< milliseconds since the epoch
        QPointer<NetworkResponse> response;
        int reserved = 0;
        QEventLoop *loop = nullptr; ///< waits for the reply; null for asynchronous calls
        bool finished = false;      ///< the loop has been ended and will decode the reply
    };

    QNetworkReply *_send(CallType type, const QUrl &url, const QVariantMap &parameters);
    void _watch(QNetworkReply *reply);
    void _enter(QNetworkReply *reply, const Pending &pending);
    Pending _take(QNetworkReply *reply);
    void _giveUp(QNetworkReply *reply, const Pending &pending);
    QVariantMap _wait(QNetworkReply *reply, Pending pending);
    QVariantMap _decodeBody(QNetworkReply *reply) const;

    QNetworkAccessManager m_access;
    QHash<QNetworkReply *, Pending> m_pending;
    QBasicTimer m_timer;
};

} // namespace marlowen
