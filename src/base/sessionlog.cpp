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

FailureHandler &failureHandler()
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
        // Later entries are lost, without a warning of the toolkit about each of them.
        m_file.setFileName(QProcess::nullDevice());
        m_file.open(QIODevice::WriteOnly);
        if (failureHandler()) {
            failureHandler()(QStringLiteral("Error opening Log"),
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

std::unique_ptr<SessionLog> &currentLog()
{
    static std::unique_ptr<SessionLog> log;
    return log;
}

QTextStream &newEntry(const char *prefix)
{
    if (!currentLog()) {
        // Kept before it is opened: the failure handler may run an event loop that writes entries.
        currentLog() = std::make_unique<SessionLog>();
        currentLog()->open();
    }
    return currentLog()->stream() << prefix;
}

} // namespace

QTextStream &logInfo()
{
    return newEntry("Info: ");
}

QTextStream &logWarning()
{
    return newEntry("Warning: ");
}

QTextStream &logCritical()
{
    return newEntry("Critical: ");
}

void logFlush()
{
    if (currentLog())
        currentLog()->stream().flush();
}

void logClose()
{
    if (currentLog())
        currentLog()->close();
}

void setLogFailureHandler(FailureHandler handler)
{
    failureHandler() = std::move(handler);
}

} // namespace marlowen
