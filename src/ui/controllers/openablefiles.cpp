#include "ui/controllers/openablefiles.h"

#include "files/formats.h"

#include <QCoreApplication>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace marlowen {

bool opensInWindow(const QString &path)
{
    const Format *format = formatOf(path);
    return format && format->inWindow;
}

QString openFilter()
{
    return QCoreApplication::translate("OpenableFiles", "Sculpt Files (%1)")
        .arg(openPatterns().join(QLatin1Char(' ')));
}

QString fileToOpen(const QMimeData &data)
{
    QStringList files;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            files << url.toLocalFile();
    }
    const auto openable = std::find_if(files.cbegin(), files.cend(), opensInWindow);
    return openable != files.cend() ? *openable : files.value(0);
}

} // namespace marlowen
