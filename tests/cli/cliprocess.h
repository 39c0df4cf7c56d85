#pragma once

#include "programs.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

struct Ran
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

/// A test that runs marlowen-cli in its own folder.
class CliProcess : public QObject
{
protected:
    QTemporaryDir m_folder;
    QString _path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    QByteArray _contents(const char *name) const
    {
        QFile file(_path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void _write(const char *name, const QByteArray &bytes) const
    {
        QFile file(_path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    Ran _run(const QStringList &arguments, const QByteArray &input = {}) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(programPath("marlowen-cli"), arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(60000))
            return {};
        return {process.exitCode(), process.readAllStandardOutput(),
                process.readAllStandardError()};
    }
    Ran _script(const QByteArray &script) const { return _run({"run", "-"}, script); }
    static QJsonObject _json(const QByteArray &line)
    {
        return QJsonDocument::fromJson(line).object();
    }
};
