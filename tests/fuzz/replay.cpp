#include "fuzzinput.h"

#include <QDir>
#include <QGuiApplication>

#include <cstdio>

/// Feeds every file of the folder to the target; a fault shows as a crash or a sanitizer's
/// report. Fails when the folder has no file.
int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QDir folder(QString::fromLocal8Bit(argc > 1 ? argv[1] : "."));
    int fed = 0;
    for (const QFileInfo &entry : folder.entryInfoList(QDir::Files, QDir::Name)) {
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        const QByteArray bytes = file.readAll();
        std::printf("%s\n", qPrintable(entry.fileName()));
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()),
                               static_cast<size_t>(bytes.size()));
        ++fed;
    }
    return fed > 0 ? 0 : 1;
}
