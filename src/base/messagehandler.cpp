#include "base/messagehandler.h"

#include "base/datafolder.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

namespace marlowen {

namespace {

const char *prefixOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "DEBUG:";
    case QtWarningMsg:
        return "WARN:";
    case QtCriticalMsg:
        return "CRIT:";
    case QtFatalMsg:
        return "FATAL:";
    case QtInfoMsg:
        return "INFO:";
    }
    return nullptr;
}

/// Never destroyed: the toolkit may still have something to say while the process ends.
QTextStream &debugStream()
{
    static QTextStream *stream = [] {
        auto *file = new QFile(dataFolder() + QDir::separator() + QStringLiteral("qdebug.txt"));
        file->open(QIODevice::WriteOnly | QIODevice::Text);
        return new QTextStream(file);
    }();
    return *stream;
}

void writeMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QTextStream &stream = debugStream();

    if (const char *prefix = prefixOf(type)) {
        stream << prefix << message;
        if (type != QtDebugMsg) {
            stream << " File: " << (context.file ? context.file : "")
                   << " function: " << (context.function ? context.function : "");
        }
        stream << "\n";
    }
    stream.flush();
}

} // namespace

void installMessageHandler()
{
    qInstallMessageHandler(writeMessage);
}

} // namespace marlowen
