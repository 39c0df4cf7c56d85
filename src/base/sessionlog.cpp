#include "base/sessionlog.h"

#include "base/datafolder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <memory>

namespace marlowen {

namespace {

using FailureHandler = std::function<void(const QString &, const QString &)>;

FailureHandler &_failureHandler()
{
    static FailureHandler handler;
    return handler;
}

/// Owns the file and the stream bound to it. Writes to a stream whose file is not open are lost.
class SessionLog
{
public:
    SessionLog()
        : m_file(dataFolder() + QDir::separator() + QStringLiteral("marlowen3_") +
                 QString::number(QCoreApplication::applicationPid(), 16) + QStringLiteral(".log"))
        , m_stream(&m_file)
    {
    }

    void open()
    {
        if (m_file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            m_stream << "Starting Marlowen 3 log: " << _now() << "\n";
            return;
        }
        // What follows is lost, without a complaint of the toolkit about every entry.
        m_file.setFileName(QProcess::nullDevice());
        m_file.open(QIODevice::WriteOnly);
        if (_failureHandler()) {
            _failureHandler()(QStringLiteral("Error opening Log"),
                              QStringLiteral("Could not open log file for writing"));
        }
    }

    QTextStream &stream() { return m_stream; }

    void close()
    {
        if (!m_file.isOpen())
            return;
        m_stream << "Closing Marlowen 3 log: " << _now() << "\n";
        m_stream.flush();
        m_file.close();
    }

private:
    static QString _now() { return QDateTime::currentDateTime().toString(Qt::TextDate); }

    QFile m_file;
    QTextStream m_stream;
};

std::unique_ptr<SessionLog> &_log()
{
    static std::unique_ptr<SessionLog> log;
    return log;
}

QTextStream &_entry(const char *prefix)
{
    if (!_log()) {
        // Kept before it is opened: the failure handler may run an event loop that writes entries.
        _log() = std::make_unique<SessionLog>();
        _log()->open();
    }
    return _log()->stream() << prefix;
}

} // namespace

QTextStream &logInfo()
{
    return _entry("Info: ");
}

QTextStream &logWarning()
{
    return _entry("Warning: ");
}

QTextStream &logCritical()
{
    return _entry("Critical: ");
}

void logFlush()
{
    if (_log())
        _log()->stream().flush();
}

void logClose()
{
    if (_log())
        _log()->close();
}

void setLogFailureHandler(FailureHandler handler)
{
    _failureHandler() = std::move(handler);
}

} // namespace marlowen
