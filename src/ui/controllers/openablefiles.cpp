#include "ui/controllers/openablefiles.h"

#include "files/formats.h"

#include <QCoreApplication>
#include <QMimeData>
#include <QUrl>

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

QString firstOpenable(const QMimeData &data)
{
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile() && opensInWindow(url.toLocalFile()))
            return url.toLocalFile();
    }
    return {};
}

} // namespace marlowen
