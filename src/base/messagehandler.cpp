#include "base/messagehandler.h"

#include "base/datafolder.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

namespace {

const char *_prefix(QtMsgType type)
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

void _writeMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    static QFile file(dataFolder() + QDir::separator() + QStringLiteral("qdebug.txt"));
    static QTextStream stream(&file);
    if (!file.isOpen())
        file.open(QIODevice::WriteOnly | QIODevice::Text);

    if (const char *prefix = _prefix(type)) {
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
    qInstallMessageHandler(_writeMessage);
}
