#include "ui/recentfilesmenu.h"

#include "base/qevsettings.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>

RecentFilesMenu::RecentFilesMenu(QObject *parent)
    : QObject(parent)
{
    for (int entry = 0; entry < entryCount; ++entry) {
        auto *action = new QAction(this);
        action->setObjectName(QStringLiteral("recentFile%1").arg(entry));
        action->setVisible(false);
        m_actions.append(action);
    }
}

void RecentFilesMenu::refresh()
{
    const QStringList files = QevSettings().recentFiles();
    for (int entry = 0; entry < entryCount; ++entry) {
        QAction *action = m_actions[entry];
        const bool used = entry < files.size() && !files[entry].isEmpty();
        action->setVisible(used);
        if (!used)
            continue;
        action->setText(QFileInfo(files[entry]).fileName());
        action->setData(files[entry]);
        action->setToolTip(QDir::toNativeSeparators(files[entry]));
    }
}
